#ifndef DESKWATCH_PROVISIONING_ELEMENTS_H
#define DESKWATCH_PROVISIONING_ELEMENTS_H

#include "provisioning_import.h"

#include <array>
#include <limits>

namespace deskwatch {

/// How an element's number becomes a member's value.
enum class Carriage { none, flag, number, passwordMode };

/// An element that a provisioning document may hold.
struct ElementRule {
    const char* name;
    Fate fate;
    Carriage carriage;
    const char* member;
    int least;
    int most;
    /// What an absent or empty element means.
    int absent;
    /// Whether it means nothing in a document that requires no password.
    bool isPasswordRule;
    const char* remark;
};

inline constexpr int anyNumber = std::numeric_limits<int>::max();

/// The elements with a value that this watch or the protocol looks at, in the order of the policy set's members.
inline constexpr std::array<ElementRule, 21> elementRules{{
    {"AlphanumericDevicePasswordRequired", Fate::enforced, Carriage::passwordMode, "PasswordMode", 0, 1, 0, true, ""},
    {"AllowCamera", Fate::stored, Carriage::flag, "allowCamera", 0, 1, 1, false, ""},
    {"AllowBluetooth", Fate::stored, Carriage::flag, "allowBluetoothMode", 0, 2, 2, false,
     "hands-free only (1) and allowed (2) arrive alike"},
    {"AllowBrowser", Fate::stored, Carriage::flag, "allowBrowser", 0, 1, 1, false, ""},
    {"AllowDesktopSync", Fate::stored, Carriage::flag, "allowDesktopSync", 0, 1, 1, false, ""},
    {"AllowInternetSharing", Fate::stored, Carriage::flag, "allowInternetSharing", 0, 1, 1, false, ""},
    {"AllowPOPIMAPEmail", Fate::enforced, Carriage::flag, "allowPOPIMAPEmail", 0, 1, 1, false, ""},
    {"AllowSimpleDevicePassword", Fate::enforced, Carriage::flag, "allowSimplePassword", 0, 1, 1, true, ""},
    {"AllowStorageCard", Fate::stored, Carriage::flag, "allowStorageCard", 0, 1, 1, false, ""},
    {"AllowTextMessaging", Fate::enforced, Carriage::flag, "allowTextMessaging", 0, 1, 1, false, ""},
    {"AllowWifi", Fate::enforced, Carriage::flag, "allowWifi", 0, 1, 1, false, ""},
    {"DevicePasswordEnabled", Fate::enforced, Carriage::flag, "devicePasswordEnabled", 0, 1, 0, false, ""},
    {"DevicePasswordExpiration", Fate::enforced, Carriage::number, "devicePasswordExpiration", 0, 730, 0, true, ""},
    {"DevicePasswordHistory", Fate::enforced, Carriage::number, "devicePasswordHistory", 0, 50, 0, true, ""},
    {"MinDevicePasswordComplexCharacters", Fate::enforced, Carriage::number, "minDevicePasswordComplexCharacters", 1, 4,
     1, true, "only when the password must be alphanumeric"},
    {"MaxDevicePasswordFailedAttempts", Fate::enforced, Carriage::number, "maxDevicePasswordFailedAttempts", 4, 16, 0,
     true, "without a limit 10 are allowed"},
    {"MaxInactivityTimeDeviceLock", Fate::enforced, Carriage::number, "maxInactivityTimeDeviceLock", 0, anyNumber, 0,
     true, "9999 seconds and more, no limit in the protocol, are taken as they stand"},
    {"MinDevicePasswordLength", Fate::enforced, Carriage::number, "minDevicePasswordLength", 1, 16, 0, true,
     "at least 4 (6 in Korea) when a password is required"},
    {"PasswordRecoveryEnabled", Fate::stored, Carriage::flag, "passwordRecoveryEnabled", 0, 1, 0, true, ""},
    {"RequireDeviceEncryption", Fate::enforced, Carriage::flag, "requireDeviceEncryption", 0, 1, 0, false, ""},
    {"RequireStorageCardEncryption", Fate::notDeliverable, Carriage::none, "", 0, 1, 0, false, ""},
}};

/// The elements of the protocol that no watch of this kind ever hears of.
inline constexpr std::array<const char*, 21> unknownElements{
    "AllowConsumerEmail",
    "AllowHTMLEmail",
    "AllowIrDA",
    "AllowRemoteDesktop",
    "AllowSMIMESoftCerts",
    "AllowUnsignedApplications",
    "AllowUnsignedInstallationPackages",
    "AttachmentsEnabled",
    "RequireManualSyncWhenRoaming",
    "RequireSignedSMIMEMessages",
    "RequireEncryptedSMIMEMessages",
    "AllowSMIMEEncryptionAlgorithmNegotiation",
    "RequireSignedSMIMEAlgorithm",
    "RequireEncryptionSMIMEAlgorithm",
    "MaxAttachmentSize",
    "MaxCalendarAgeFilter",
    "MaxEmailAgeFilter",
    "MaxEmailBodyTruncationSize",
    "MaxEmailHTMLBodyTruncationSize",
    "ApprovedApplicationList",
    "UnapprovedInROMApplicationList",
};

} // namespace deskwatch

#endif
