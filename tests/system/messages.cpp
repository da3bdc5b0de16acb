#include "messages.h"

namespace system_test {

const char* const defaultPolicy =
    R"({"PasswordMode":0,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,"allowDesktopSync":true,)"
    R"("allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":true,"allowStorageCard":true,)"
    R"("allowTextMessaging":true,"allowWifi":true,"devicePasswordEnabled":false,"devicePasswordExpiration":0,)"
    R"("devicePasswordHistory":0,"minDevicePasswordComplexCharacters":1,"maxDevicePasswordFailedAttempts":0,)"
    R"("maxInactivityTimeDeviceLock":0,"minDevicePasswordLength":0,"passwordRecoveryEnabled":false,)"
    R"("requireDeviceEncryption":false})";

const char* const hardenedPolicy =
    R"({"PasswordMode":64,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,"allowDesktopSync":true,)"
    R"("allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":false,"allowStorageCard":true,)"
    R"("allowTextMessaging":true,"allowWifi":true,"devicePasswordEnabled":true,"devicePasswordExpiration":365,)"
    R"("devicePasswordHistory":4,"minDevicePasswordComplexCharacters":1,"maxDevicePasswordFailedAttempts":10,)"
    R"("maxInactivityTimeDeviceLock":900,"minDevicePasswordLength":4,"passwordRecoveryEnabled":false,)"
    R"("requireDeviceEncryption":true})";

const char* const limitsWithoutPasswordPolicy =
    R"({"PasswordMode":0,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,"allowDesktopSync":true,)"
    R"("allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":true,"allowStorageCard":true,)"
    R"("allowTextMessaging":true,"allowWifi":true,"devicePasswordEnabled":false,"devicePasswordExpiration":0,)"
    R"("devicePasswordHistory":0,"minDevicePasswordComplexCharacters":3,"maxDevicePasswordFailedAttempts":8,)"
    R"("maxInactivityTimeDeviceLock":900,"minDevicePasswordLength":4,"passwordRecoveryEnabled":false,)"
    R"("requireDeviceEncryption":false})";

const char* const strictestPolicy =
    R"({"PasswordMode":64,"allowCamera":false,"allowBluetoothMode":false,"allowBrowser":false,)"
    R"("allowDesktopSync":false,"allowInternetSharing":false,"allowPOPIMAPEmail":false,"allowSimplePassword":false,)"
    R"("allowStorageCard":false,"allowTextMessaging":false,"allowWifi":false,"devicePasswordEnabled":true,)"
    R"("devicePasswordExpiration":1,"devicePasswordHistory":50,"minDevicePasswordComplexCharacters":4,)"
    R"("maxDevicePasswordFailedAttempts":4,"maxInactivityTimeDeviceLock":60,"minDevicePasswordLength":16,)"
    R"("passwordRecoveryEnabled":false,"requireDeviceEncryption":true})";

const char* const pinPolicy =
    R"({"PasswordMode":32,"allowCamera":true,"allowBluetoothMode":true,"allowBrowser":true,"allowDesktopSync":true,)"
    R"("allowInternetSharing":true,"allowPOPIMAPEmail":true,"allowSimplePassword":true,"allowStorageCard":true,)"
    R"("allowTextMessaging":true,"allowWifi":true,"devicePasswordEnabled":true,"devicePasswordExpiration":0,)"
    R"("devicePasswordHistory":0,"minDevicePasswordComplexCharacters":0,"maxDevicePasswordFailedAttempts":0,)"
    R"("maxInactivityTimeDeviceLock":0,"minDevicePasswordLength":0,"passwordRecoveryEnabled":false,)"
    R"("requireDeviceEncryption":false})";

namespace {

/// The accounts' entries, under the name that the message has for the id. Names go in as they are.
std::string entries(const std::vector<PolicyAccount>& accounts, const std::string& idMember) {
    std::string list;
    for (const auto& account : accounts) {
        list += std::string(list.empty() ? "" : ",") + R"({")" + idMember + R"(":)" + std::to_string(account.id) +
                R"(,"accountName":")" + account.name + R"(","displayName":"The account of )" + account.name + "\"" +
                (account.policySet.empty() ? "" : R"(,"policySet":)" + account.policySet) + "}";
    }
    return "[" + list + "]";
}

} // namespace

PolicyAccount alice(const char* policySet) {
    return {1, "alice@contoso.example", policySet};
}

PolicyAccount bob(const char* policySet) {
    return {2, "bob@fabrikam.example", policySet};
}

PolicyAccount carol(const char* policySet) {
    return {3, "carol@mail.example", policySet};
}

std::string policyUpdate(const std::vector<PolicyAccount>& accounts) {
    return R"({"msgId":"email-itpolicy-ind","seqId":1,"param":)" + entries(accounts, "accountId") + "}";
}

std::string accountInfo(const std::vector<PolicyAccount>& accounts) {
    return R"({"msgId":"email-account-info","seqId":2,"accountId":)" + entries(accounts, "id") + "}";
}

std::string initResponse(const std::vector<PolicyAccount>& accounts) {
    return R"({"msgId":"email-init-res","seqId":3,"param":{"accountId":)" + entries(accounts, "id") + "}}";
}

} // namespace system_test
