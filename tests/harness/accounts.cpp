#include "accounts.h"

#include "TeskConsumerDbMgr.h"

namespace harness {

TeskPolicyData office(int accountId) {
    TeskPolicyData data;
    data.accountId = accountId;
    data.accountName = "bob@fabrikam.example";
    data.displayName = "Bob";
    data.devicePasswordEnabled = 1;
    data.minDevicePasswordLength = 4;
    data.maxDevicePasswordFailedAttempts = 8;
    return data;
}

TeskPolicyData bank(int accountId) {
    auto data = office(accountId);
    data.accountName = "bob@woodgrove.example";
    data.allowSimplePassword = 0;
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = 2;
    data.minDevicePasswordLength = 8;
    data.requireDeviceEncryption = 1;
    data.allowWifi = 0;
    return data;
}

TeskPolicyData agency(int accountId) {
    TeskPolicyData data;
    data.accountId = accountId;
    data.accountName = "bob@adventure.example";
    return data;
}

std::vector<std::string> fieldsOf(const TeskPolicyData& data) {
    std::vector<std::string> fields;
    for (const int number : {data.accountId,
                             data.devicePasswordEnabled,
                             data.allowSimplePassword,
                             data.alphanumericDevicePasswordRequired,
                             data.minDevicePasswordComplexCharacters,
                             data.minDevicePasswordLength,
                             data.maxDevicePasswordFailedAttempts,
                             data.maxInactivityTimeDeviceLock,
                             data.passwordRecoveryEnabled,
                             data.devicePasswordExpiration,
                             data.devicePasswordHistory,
                             data.requireDeviceEncryption,
                             data.requireStorageCardEncryption,
                             data.allowBluetooth,
                             data.allowBrowser,
                             data.allowCamera,
                             data.allowPopimapEmail,
                             data.allowDesktopSync,
                             data.allowInternetSharing,
                             data.allowStorageCard,
                             data.allowTextMessaging,
                             data.allowWifi}) {
        fields.push_back(std::to_string(number));
    }
    fields.push_back(data.accountName);
    fields.push_back(data.displayName);
    return fields;
}

TeskPolicyDataList storedAccounts() {
    TeskPolicyDataList accounts;
    TeskConsumerDbMgr::getInstance()->getPolicyDataList(accounts);
    return accounts;
}

TeskPolicyData storedAccount(int accountId) {
    TeskPolicyData data;
    TeskConsumerDbMgr::getInstance()->getPolicyDataByAccountId(accountId, data);
    return data;
}

} // namespace harness
