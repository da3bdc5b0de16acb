#include "unit_test.h"

#include <glib.h>

#include <algorithm>
#include <iostream>

#include "TeskConsumerDbMgr.h"

UnitTest::UnitTest() {
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
    // Whatever the service does on a bus must not reach the machine's.
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", TRUE);
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "unencrypted");
    platform.settings.setKeyAsDevice("db/rgn/country_iso", "GB");
    platform.settings.setKeyAsDevice("db/setting/lock_type", 0);
    platform.settings.deliverChanges();
}

void UnitTest::TearDown() {
    EXPECT_EQ(platform.leaks(), Lines{});
    if (HasFailure()) {
        for (const auto& line : journal.all()) {
            std::cout << "  journal: " << line << '\n';
        }
    }
}

void UnitTest::store(std::initializer_list<TeskPolicyData> accounts) {
    for (const auto& data : accounts) {
        ASSERT_EQ(TeskConsumerDbMgr::getInstance()->insertPolicy(data), 0);
    }
    platform.devicePolicy.registerService();
    journal.clear();
}

TeskPolicyData UnitTest::stored(int accountId) {
    TeskPolicyData data;
    TeskConsumerDbMgr::getInstance()->getPolicyDataByAccountId(accountId, data);
    return data;
}

int UnitTest::storedAccounts() {
    int count = 0;
    TeskConsumerDbMgr::getInstance()->getAllEasAccountCount(&count);
    return count;
}

UnitTest::Lines UnitTest::messages() const {
    Lines lines = journal.logs();
    const auto isTrace = [](const std::string& line) { return line == "I Enter" || line == "I Leave" || line == "I "; };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isTrace), lines.end());
    return lines;
}

TeskPolicyData account(int accountId) {
    TeskPolicyData data;
    data.accountId = accountId;
    return data;
}

TeskPolicyData passwordAccount(int accountId) {
    auto data = account(accountId);
    data.devicePasswordEnabled = 1;
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
