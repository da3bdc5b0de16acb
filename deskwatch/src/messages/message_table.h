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
    /// The numbers that make sense, beside 0, which sets no limit.
    int least = 0;
    int most = 1;
    /// The column of the stored account.
    std::string_view column;
    /// The setting of the device policy manager; empty when the member is stored and not enforced.
    std::string_view setting;
    /// The element of the protocol.
    std::string_view element;
    /// What it demands.
    std::string_view words;
};

inline constexpr int noMaximum = std::numeric_limits<int>::max();

/// The numbers that the mail application writes for the kind of a password.
inline constexpr std::array<int, 4> passwordModes{0, 32, 64, 96};

/// The policy set in its order. Schemas, checks, the import and the documents follow these rows.
inline constexpr std::array<PolicyMember, 20> policyMembers{{
    {"PasswordMode", MemberType::Mode, 0, 96, "alphanumeric_device_password_required", "quality",
     "AlphanumericDevicePasswordRequired", "64 or 96: the password must be alphanumeric; 0 or 32: numeric is enough"},
    {"allowCamera", MemberType::Flag, 0, 1, "allow_camera", "", "AllowCamera", "Stored, not enforced"},
    {"allowBluetoothMode", MemberType::Flag, 0, 1, "allow_bluetooth", "", "AllowBluetooth", "Stored, not enforced"},
    {"allowBrowser", MemberType::Flag, 0, 1, "allow_browser", "", "AllowBrowser", "Stored, not enforced"},
    {"allowDesktopSync", MemberType::Flag, 0, 1, "allow_desktop_sync", "", "AllowDesktopSync", "Stored, not enforced"},
    {"allowInternetSharing", MemberType::Flag, 0, 1, "allow_internet_sharing", "", "AllowInternetSharing",
     "Stored, not enforced"},
    {"allowPOPIMAPEmail", MemberType::Flag, 0, 1, "allow_popimap_email", "popimap_email_state", "AllowPOPIMAPEmail",
     "POP and IMAP mail may be used"},
    {"allowSimplePassword", MemberType::Flag, 0, 1, "allow_simple_password", "quality", "AllowSimpleDevicePassword",
     "A password such as 1111 may be used"},
    {"allowStorageCard", MemberType::Flag, 0, 1, "allow_storage_card", "", "AllowStorageCard", "Stored, not enforced"},
    {"allowTextMessaging", MemberType::Flag, 0, 1, "allow_text_messaging", "messaging_state", "AllowTextMessaging",
     "Text messages may be used"},
    {"allowWifi", MemberType::Flag, 0, 1, "allow_wifi", "wifi_state", "AllowWifi", "Wi-Fi may be used"},
    {"devicePasswordEnabled", MemberType::Flag, 0, 1, "device_password_enabled", "quality", "DevicePasswordEnabled",
     "The watch must have a lock"},
    {"devicePasswordExpiration", MemberType::Number, 0, 730, "device_password_expiration", "expires",
     "DevicePasswordExpiration", "Days until a password must be changed; 0: never"},
    {"devicePasswordHistory", MemberType::Number, 0, 50, "device_password_history", "history", "DevicePasswordHistory",
     "Earlier passwords that may not come back"},
    {"minDevicePasswordComplexCharacters", MemberType::Number, 1, 4, "min_device_password_complex_characters",
     "min_complex_chars", "MinDevicePasswordComplexCharacters",
     "The least number of complex characters; enforced for an alphanumeric password"},
    {"maxDevicePasswordFailedAttempts", MemberType::Number, 4, 16, "max_device_password_failed_attempts",
     "maximum_failed_attempts_for_wipe", "MaxDevicePasswordFailedAttempts",
     "Wrong attempts before the watch wipes itself; 0: no limit of the account's own"},
    {"maxInactivityTimeDeviceLock", MemberType::Number, 0, noMaximum, "max_inactivity_time_device_lock",
     "max_inactivity_time_device_lock", "MaxInactivityTimeDeviceLock",
     "Seconds without use until the watch locks; 0: no limit"},
    {"minDevicePasswordLength", MemberType::Number, 1, 16, "min_device_password_length", "minimum_length",
     "MinDevicePasswordLength", "Characters; 0: no minimum of the account's own"},
    {"passwordRecoveryEnabled", MemberType::Flag, 0, 1, "password_recovery_enabled", "", "PasswordRecoveryEnabled",
     "Stored, not enforced"},
    {"requireDeviceEncryption", MemberType::Flag, 0, 1, "require_device_encryption", "internal_storage_encryption",
     "RequireDeviceEncryption", "The watch's internal storage must be encrypted"},
}};

} // namespace deskwatch

#endif
