#ifndef SAMPLE_POLICIES_H
#define SAMPLE_POLICIES_H

#include <string>

/// Policy sets as administrators really impose them, and the messages around them.
namespace samples {

/// A mail server's built-in policy: no password, everything allowed.
inline constexpr char builtIn[] =
    R"({"PasswordMode":0,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,"allowDesktopSync":true,)"
    R"("allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":true,"allowStorageCard":true,)"
    R"("allowTextMessaging":true,"allowWifi":true,"devicePasswordEnabled":false,"devicePasswordExpiration":0,)"
    R"("devicePasswordHistory":0,"minDevicePasswordComplexCharacters":1,"maxDevicePasswordFailedAttempts":0,)"
    R"("maxInactivityTimeDeviceLock":0,"minDevicePasswordLength":0,"passwordRecoveryEnabled":false,)"
    R"("requireDeviceEncryption":false})";

/// A hardened policy: alphanumeric password and encryption.
inline constexpr char hardened[] =
    R"({"PasswordMode":64,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,"allowDesktopSync":true,)"
    R"("allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":false,"allowStorageCard":true,)"
    R"("allowTextMessaging":true,"allowWifi":true,"devicePasswordEnabled":true,"devicePasswordExpiration":365,)"
    R"("devicePasswordHistory":4,"minDevicePasswordComplexCharacters":1,"maxDevicePasswordFailedAttempts":10,)"
    R"("maxInactivityTimeDeviceLock":900,"minDevicePasswordLength":4,"passwordRecoveryEnabled":false,)"
    R"("requireDeviceEncryption":true})";

/// A small server's default: the password is off, its limits are set all the same.
inline constexpr char limitsWithoutPassword[] =
    R"({"PasswordMode":0,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,"allowDesktopSync":true,)"
    R"("allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":true,"allowStorageCard":true,)"
    R"("allowTextMessaging":true,"allowWifi":true,"devicePasswordEnabled":false,"devicePasswordExpiration":0,)"
    R"("devicePasswordHistory":0,"minDevicePasswordComplexCharacters":3,"maxDevicePasswordFailedAttempts":8,)"
    R"("maxInactivityTimeDeviceLock":900,"minDevicePasswordLength":4,"passwordRecoveryEnabled":false,)"
    R"("requireDeviceEncryption":false})";

/// The strictest policy that a server may send.
inline constexpr char strictest[] =
    R"({"PasswordMode":64,"allowCamera":false,"allowBluetoothMode":false,"allowBrowser":false,)"
    R"("allowDesktopSync":false,"allowInternetSharing":false,"allowPOPIMAPEmail":false,"allowSimplePassword":false,)"
    R"("allowStorageCard":false,"allowTextMessaging":false,"allowWifi":false,"devicePasswordEnabled":true,)"
    R"("devicePasswordExpiration":1,"devicePasswordHistory":50,"minDevicePasswordComplexCharacters":4,)"
    R"("maxDevicePasswordFailedAttempts":4,"maxInactivityTimeDeviceLock":60,"minDevicePasswordLength":16,)"
    R"("passwordRecoveryEnabled":false,"requireDeviceEncryption":true})";

/// A numeric password, nothing else.
inline constexpr char pin[] =
    R"({"PasswordMode":32,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,"allowDesktopSync":true,)"
    R"("allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":true,"allowStorageCard":true,)"
    R"("allowTextMessaging":true,"allowWifi":true,"devicePasswordEnabled":true,"devicePasswordExpiration":0,)"
    R"("devicePasswordHistory":0,"minDevicePasswordComplexCharacters":0,"maxDevicePasswordFailedAttempts":0,)"
    R"("maxInactivityTimeDeviceLock":0,"minDevicePasswordLength":0,"passwordRecoveryEnabled":false,)"
    R"("requireDeviceEncryption":false})";

/// An entry of a policy indication.
inline std::string entry(int accountId, const std::string& policySet,
                         const std::string& accountName = "alice@contoso.example") {
    return R"({"accountId":)" + std::to_string(accountId) + R"(,"accountName":")" + accountName + R"(","policySet":)" +
           policySet + "}";
}

/// A policy indication with this text as its "param".
inline std::string indicationOf(const std::string& param) {
    return R"({"msgId":"email-itpolicy-ind","seqId":1,"param":)" + param + "}";
}

/// A policy indication for one account.
inline std::string indication(int accountId, const std::string& policySet) {
    return indicationOf("[" + entry(accountId, policySet) + "]");
}

} // namespace samples

#endif
