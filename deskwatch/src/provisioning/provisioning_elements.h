// Written by script/protocol from docs/protocol.json.
#ifndef DESKWATCH_PROVISIONING_ELEMENTS_H
#define DESKWATCH_PROVISIONING_ELEMENTS_H

#include <array>

#include "provisioning/element_rule.h"

namespace deskwatch {

/// The elements with a value that this watch or the protocol looks at, in the order of the policy set's members.
inline constexpr std::array<ElementRule, 21> elementRules{{
    {"AlphanumericDevicePasswordRequired", Support::Enforced, Conversion::PasswordMode, "PasswordMode", 0, 1, 0, true,
     ""},
    {"AllowCamera", Support::Stored, Conversion::Flag, "allowCamera", 0, 1, 1, false, ""},
    {"AllowBluetooth", Support::Stored, Conversion::Flag, "allowBluetoothMode", 0, 2, 2, false,
     "hands-free only (1) and allowed (2) are sent as the same value"},
    {"AllowBrowser", Support::Stored, Conversion::Flag, "allowBrowser", 0, 1, 1, false, ""},
    {"AllowDesktopSync", Support::Stored, Conversion::Flag, "allowDesktopSync", 0, 1, 1, false, ""},
    {"AllowInternetSharing", Support::Stored, Conversion::Flag, "allowInternetSharing", 0, 1, 1, false, ""},
    {"AllowPOPIMAPEmail", Support::Enforced, Conversion::Flag, "allowPOPIMAPEmail", 0, 1, 1, false, ""},
    {"AllowSimpleDevicePassword", Support::Enforced, Conversion::Flag, "allowSimplePassword", 0, 1, 1, true, ""},
    {"AllowStorageCard", Support::Stored, Conversion::Flag, "allowStorageCard", 0, 1, 1, false, ""},
    {"AllowTextMessaging", Support::Enforced, Conversion::Flag, "allowTextMessaging", 0, 1, 1, false, ""},
    {"AllowWifi", Support::Enforced, Conversion::Flag, "allowWifi", 0, 1, 1, false, ""},
    {"DevicePasswordEnabled", Support::Enforced, Conversion::Flag, "devicePasswordEnabled", 0, 1, 0, false, ""},
    {"DevicePasswordExpiration", Support::Enforced, Conversion::Number, "devicePasswordExpiration", 0, 730, 0, true,
     ""},
    {"DevicePasswordHistory", Support::Enforced, Conversion::Number, "devicePasswordHistory", 0, 50, 0, true, ""},
    {"MinDevicePasswordComplexCharacters", Support::Enforced, Conversion::Number, "minDevicePasswordComplexCharacters",
     1, 4, 1, true, "only when the password must be alphanumeric"},
    {"MaxDevicePasswordFailedAttempts", Support::Enforced, Conversion::Number, "maxDevicePasswordFailedAttempts", 4, 16,
     0, true, "10 are allowed when there is no limit"},
    {"MaxInactivityTimeDeviceLock", Support::Enforced, Conversion::Number, "maxInactivityTimeDeviceLock", 0, anyNumber,
     0, true, "9999 seconds and more, no limit in the protocol, are taken literally"},
    {"MinDevicePasswordLength", Support::Enforced, Conversion::Number, "minDevicePasswordLength", 1, 16, 0, true,
     "at least 4 (6 in Korea) when a password is required"},
    {"PasswordRecoveryEnabled", Support::Stored, Conversion::Flag, "passwordRecoveryEnabled", 0, 1, 0, true, ""},
    {"RequireDeviceEncryption", Support::Enforced, Conversion::Flag, "requireDeviceEncryption", 0, 1, 0, false, ""},
    {"RequireStorageCardEncryption", Support::NotDeliverable, Conversion::None, "", 0, 1, 0, false, ""},
}};

/// The elements that this watch never hears of.
inline constexpr std::array<OtherElement, 21> otherElements{{
    {"AllowConsumerEmail", Support::MailApplication},
    {"AllowHTMLEmail", Support::MailApplication},
    {"AllowIrDA", Support::NotThere},
    {"AllowRemoteDesktop", Support::NotThere},
    {"AllowSMIMESoftCerts", Support::MailApplication},
    {"AllowUnsignedApplications", Support::NotThere},
    {"AllowUnsignedInstallationPackages", Support::NotThere},
    {"AttachmentsEnabled", Support::MailApplication},
    {"RequireManualSyncWhenRoaming", Support::MailApplication},
    {"RequireSignedSMIMEMessages", Support::MailApplication},
    {"RequireEncryptedSMIMEMessages", Support::MailApplication},
    {"AllowSMIMEEncryptionAlgorithmNegotiation", Support::MailApplication},
    {"RequireSignedSMIMEAlgorithm", Support::MailApplication},
    {"RequireEncryptionSMIMEAlgorithm", Support::MailApplication},
    {"MaxAttachmentSize", Support::MailApplication},
    {"MaxCalendarAgeFilter", Support::MailApplication},
    {"MaxEmailAgeFilter", Support::MailApplication},
    {"MaxEmailBodyTruncationSize", Support::MailApplication},
    {"MaxEmailHTMLBodyTruncationSize", Support::MailApplication},
    {"ApprovedApplicationList", Support::NotDeliverable},
    {"UnapprovedInROMApplicationList", Support::NotDeliverable},
}};

} // namespace deskwatch

#endif
