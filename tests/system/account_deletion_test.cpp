#include <dpm/device-policy-manager.h>
#include <gtest/gtest.h>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

TEST(AccountDeletion, RestOfTheAccountsIsEnforced) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy), bob(pinPolicy)}));
    ASSERT_EQ(enforcingAccount(), 1);

    device.send("req_delete_account", "1");

    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"2"});
    EXPECT_EQ(settings(), (Settings{33, 4, 10, 0, 0, 0, 0, 1, 1, 1, 0}));
    EXPECT_EQ(enforcingAccount(), 2);
    EXPECT_EQ(tryToAdminister(), DPM_ERROR_NONE);
}

TEST(AccountDeletion, LastOneReleasesTheDevice) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));
    ASSERT_EQ(enforcingAccount(), 1);
    ASSERT_EQ(tryToAdminister(), DPM_ERROR_NONE);

    device.send("req_delete_account", "1");

    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{});
    EXPECT_EQ(settings(), releasedSettings);
    EXPECT_EQ(enforcingAccount(), 0);
    EXPECT_EQ(tryToAdminister(), DPM_ERROR_PERMISSION_DENIED);
    EXPECT_EQ(key(keys::passwordApplied), 1);
    EXPECT_EQ(key(keys::encryptionApplied), 1);
}

TEST(AccountDeletion, UnknownAccountLeavesTheOthers) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    device.send("req_delete_account", "77");

    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
    EXPECT_EQ(tryToAdminister(), DPM_ERROR_NONE);
    EXPECT_EQ(enforcingAccount(), 1);
}

TEST(AccountDeletion, TextBehindTheNumberIsIgnored) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(pinPolicy), {12, "twelve", pinPolicy}}));

    device.send("req_delete_account", "12abc");

    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
}

TEST(AccountDeletion, TextThatIsNoNumberDeletesNothing) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));

    device.send("req_delete_account", "alice");

    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
    EXPECT_EQ(device.log().count("accountId is invalid"), 1);
}

TEST(AccountDeletion, AccountThatComesBackIsEnforcedAgain) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    device.send("req_delete_account", "1");
    ASSERT_EQ(tryToAdminister(), DPM_ERROR_PERMISSION_DENIED);

    device.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));

    EXPECT_EQ(settings(), (Settings{128, 16, 4, 4, 60, 1, 50, 0, 0, 0, 1}));
    EXPECT_EQ(tryToAdminister(), DPM_ERROR_NONE);
}

} // namespace
} // namespace system_test
