// Written by script/protocol from docs/protocol.json.
#ifndef DESKWATCH_PROVISIONING_ELEMENTS_H
#define DESKWATCH_PROVISIONING_ELEMENTS_H

#include <array>

#include "provisioning/element_rule.h"

namespace deskwatch {

/// The elements with a value that this watch or the protocol looks at, in the order of the policy set's members.
inline constexpr std::array<ElementRule, 21> elementRules{{
    {"AlphanumericDevicePasswordRequired", Support::Enforced, Conversion::PasswordMode, "PasswordMode", 0, 1, 0, true,
     "", 0, anyNumber, ""},
    {"AllowCamera", Support::Stored, Conversion::Flag, "allowCamera", 0, 1, 1, false, "", 0, anyNumber, ""},
    {"AllowBluetooth", Support::Stored, Conversion::Flag, "allowBluetoothMode", 0, 2, 2, false,
     "hands-free only (1) and allowed (2) are sent as the same value", 1, 1, ""},
    {"AllowBrowser", Support::Stored, Conversion::Flag, "allowBrowser", 0, 1, 1, false, "", 0, anyNumber, ""},
    {"AllowDesktopSync", Support::Stored, Conversion::Flag, "allowDesktopSync", 0, 1, 1, false, "", 0, anyNumber, ""},
    {"AllowInternetSharing", Support::Stored, Conversion::Flag, "allowInternetSharing", 0, 1, 1, false, "", 0,
     anyNumber, ""},
    {"AllowPOPIMAPEmail", Support::Enforced, Conversion::Flag, "allowPOPIMAPEmail", 0, 1, 1, false, "", 0, anyNumber,
     ""},
    {"AllowSimpleDevicePassword", Support::Enforced, Conversion::Flag, "allowSimplePassword", 0, 1, 1, true, "", 0,
     anyNumber, ""},
    {"AllowStorageCard", Support::Stored, Conversion::Flag, "allowStorageCard", 0, 1, 1, false, "", 0, anyNumber, ""},
    {"AllowTextMessaging", Support::Enforced, Conversion::Flag, "allowTextMessaging", 0, 1, 1, false, "", 0, anyNumber,
     ""},
    {"AllowWifi", Support::Enforced, Conversion::Flag, "allowWifi", 0, 1, 1, false, "", 0, anyNumber, ""},
    {"DevicePasswordEnabled", Support::Enforced, Conversion::Flag, "devicePasswordEnabled", 0, 1, 0, false, "", 0,
     anyNumber, ""},
    {"DevicePasswordExpiration", Support::Enforced, Conversion::Number, "devicePasswordExpiration", 0, 730, 0, true, "",
     0, anyNumber, ""},
    {"DevicePasswordHistory", Support::Enforced, Conversion::Number, "devicePasswordHistory", 0, 50, 0, true, "", 0,
     anyNumber, ""},
    {"MinDevicePasswordComplexCharacters", Support::Enforced, Conversion::Number, "minDevicePasswordComplexCharacters",
     1, 4, 1, true, "counts only when the password must be alphanumeric", 2, 4, "AlphanumericDevicePasswordRequired"},
    {"MaxDevicePasswordFailedAttempts", Support::Enforced, Conversion::Number, "maxDevicePasswordFailedAttempts", 4, 16,
     0, true, "without a limit the watch allows 10", 0, 3, ""},
    {"MaxInactivityTimeDeviceLock", Support::Enforced, Conversion::Number, "maxInactivityTimeDeviceLock", 0, anyNumber,
     0, true, "9999 seconds and more, no limit in the protocol, are taken literally", 9999, anyNumber, ""},
    {"MinDevicePasswordLength", Support::Enforced, Conversion::Number, "minDevicePasswordLength", 1, 16, 0, true,
     "at least 4 (6 in Korea) when a password is required", 0, 5, ""},
    {"PasswordRecoveryEnabled", Support::Stored, Conversion::Flag, "passwordRecoveryEnabled", 0, 1, 0, true, "", 0,
     anyNumber, ""},
    {"RequireDeviceEncryption", Support::Enforced, Conversion::Flag, "requireDeviceEncryption", 0, 1, 0, false, "", 0,
     anyNumber, ""},
    {"RequireStorageCardEncryption", Support::NotDeliverable, Conversion::None, "", 0, 1, 0, false, "", 0, anyNumber,
     ""},
}};

/// The elements that this watch never hears of.
inline constexpr std::array<OtherElement, 21> otherElements{{
    {"AllowConsumerEmail", Support::MailApplication, "1"},
    {"AllowHTMLEmail", Support::MailApplication, "1"},
    {"AllowIrDA", Support::NotThere, "1"},
    {"AllowRemoteDesktop", Support::NotThere, "1"},
    {"AllowSMIMESoftCerts", Support::MailApplication, "1"},
    {"AllowUnsignedApplications", Support::NotThere, "1"},
    {"AllowUnsignedInstallationPackages", Support::NotThere, "1"},
    {"AttachmentsEnabled", Support::MailApplication, "1"},
    {"RequireManualSyncWhenRoaming", Support::MailApplication, "0"},
    {"RequireSignedSMIMEMessages", Support::MailApplication, "0"},
    {"RequireEncryptedSMIMEMessages", Support::MailApplication, "0"},
    {"AllowSMIMEEncryptionAlgorithmNegotiation", Support::MailApplication, "2"},
    {"RequireSignedSMIMEAlgorithm", Support::MailApplication, "0"},
    {"RequireEncryptionSMIMEAlgorithm", Support::MailApplication, "0"},
    {"MaxAttachmentSize", Support::MailApplication, "-1"},
    {"MaxCalendarAgeFilter", Support::MailApplication, "0"},
    {"MaxEmailAgeFilter", Support::MailApplication, "0"},
    {"MaxEmailBodyTruncationSize", Support::MailApplication, "-1"},
    {"MaxEmailHTMLBodyTruncationSize", Support::MailApplication, "-1"},
    {"ApprovedApplicationList", Support::NotDeliverable, ""},
    {"UnapprovedInROMApplicationList", Support::NotDeliverable, ""},
}};

} // namespace deskwatch

#endif
