#ifndef DESKWATCH_MESSAGE_TABLE_H
#define DESKWATCH_MESSAGE_TABLE_H

#include <array>
#include <cstdint>
#include <limits>
#include <string_view>

namespace deskwatch {

/// A kind of message and where it keeps its accounts.
struct MessageKind {
    std::string_view id;
    std::string_view title;
    std::string_view description;
    /// The member of the message whose object holds the accounts; empty when the message itself does.
    std::string_view holder;
    /// The array of the accounts; empty when the kind has none.
    std::string_view accounts;
    /// The member of an account that holds its number.
    std::string_view accountId;
    bool hasDisplayName = false;
    bool needsPolicySet = false;
};

inline constexpr std::string_view remoteWipeKind = "eas-remote-wipe";

inline constexpr std::array<MessageKind, 4> messageKinds{{
    {"email-itpolicy-ind", "Policy indication", "The current policy sets of one or more accounts", "", "param",
     "accountId", false, true},
    {"email-account-info", "Account list", "The mail application's accounts, at the top level", "", "accountId", "id",
     true, false},
    {"email-init-res", "Start-up answer", "The mail application's accounts, inside param", "param", "accountId", "id",
     true, false},
    {remoteWipeKind, "Remote wipe", "The order to wipe the internal storage at once", "", "", "", false, false},
}};

/// What a member of a policy set is: true or false, a number in a range, or one of a few numbers.
enum class MemberType { Flag, Number, Mode };

/// A member of a policy set, and what it is called elsewhere.
struct PolicyMember {
    std::string_view name;
    MemberType type = MemberType::Flag;
    /// The column of the stored account.
    std::string_view column;
    /// The setting of the device policy manager; empty when the member is stored and not enforced.
    std::string_view setting;
    /// The element of the protocol.
    std::string_view element;
    /// What it demands.
    std::string_view words;
    /// The range that makes sense for a number, beside 0, which sets no limit.
    int least = 0;
    int most = 0;
};

inline constexpr int noMaximum = std::numeric_limits<int>::max();

/// The numbers that the mail application writes for the kind of a password.
inline constexpr std::array<int, 4> passwordModes{0, 32, 64, 96};

/// The policy set in its order. Schemas, checks, the import and the documents follow these rows.
inline constexpr std::array<PolicyMember, 20> policyMembers{{
    {"PasswordMode", MemberType::Mode, "alphanumeric_device_password_required", "quality",
     "AlphanumericDevicePasswordRequired", "64 or 96: the password must be alphanumeric; 0 or 32: numeric is enough"},
    {"allowCamera", MemberType::Flag, "allow_camera", "", "AllowCamera", "Stored, not enforced"},
    {"allowBluetoothMode", MemberType::Flag, "allow_bluetooth", "", "AllowBluetooth", "Stored, not enforced"},
    {"allowBrowser", MemberType::Flag, "allow_browser", "", "AllowBrowser", "Stored, not enforced"},
    {"allowDesktopSync", MemberType::Flag, "allow_desktop_sync", "", "AllowDesktopSync", "Stored, not enforced"},
    {"allowInternetSharing", MemberType::Flag, "allow_internet_sharing", "", "AllowInternetSharing",
     "Stored, not enforced"},
    {"allowPOPIMAPEmail", MemberType::Flag, "allow_popimap_email", "popimap_email_state", "AllowPOPIMAPEmail",
     "POP and IMAP mail may be used"},
    {"allowSimplePassword", MemberType::Flag, "allow_simple_password", "quality", "AllowSimpleDevicePassword",
     "A password such as 1111 may be used"},
    {"allowStorageCard", MemberType::Flag, "allow_storage_card", "", "AllowStorageCard", "Stored, not enforced"},
    {"allowTextMessaging", MemberType::Flag, "allow_text_messaging", "messaging_state", "AllowTextMessaging",
     "Text messages may be used"},
    {"allowWifi", MemberType::Flag, "allow_wifi", "wifi_state", "AllowWifi", "Wi-Fi may be used"},
    {"devicePasswordEnabled", MemberType::Flag, "device_password_enabled", "quality", "DevicePasswordEnabled",
     "The watch must have a lock"},
    {"devicePasswordExpiration", MemberType::Number, "device_password_expiration", "expires",
     "DevicePasswordExpiration", "Days until a password must be changed; 0: never", 0, 730},
    {"devicePasswordHistory", MemberType::Number, "device_password_history", "history", "DevicePasswordHistory",
     "Earlier passwords that may not come back", 0, 50},
    {"minDevicePasswordComplexCharacters", MemberType::Number, "min_device_password_complex_characters",
     "min_complex_chars", "MinDevicePasswordComplexCharacters",
     "The least number of complex characters; enforced for an alphanumeric password", 1, 4},
    {"maxDevicePasswordFailedAttempts", MemberType::Number, "max_device_password_failed_attempts",
     "maximum_failed_attempts_for_wipe", "MaxDevicePasswordFailedAttempts",
     "Wrong attempts before the watch wipes itself; 0: no limit of the account's own", 4, 16},
    {"maxInactivityTimeDeviceLock", MemberType::Number, "max_inactivity_time_device_lock",
     "max_inactivity_time_device_lock", "MaxInactivityTimeDeviceLock",
     "Seconds without use until the watch locks; 0: no limit", 0, noMaximum},
    {"minDevicePasswordLength", MemberType::Number, "min_device_password_length", "minimum_length",
     "MinDevicePasswordLength", "Characters; 0: no minimum of the account's own", 1, 16},
    {"passwordRecoveryEnabled", MemberType::Flag, "password_recovery_enabled", "", "PasswordRecoveryEnabled",
     "Stored, not enforced"},
    {"requireDeviceEncryption", MemberType::Flag, "require_device_encryption", "internal_storage_encryption",
     "RequireDeviceEncryption", "The watch's internal storage must be encrypted"},
}};

} // namespace deskwatch

#endif
