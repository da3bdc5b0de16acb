#include "device_state.h"
#include "messages.h"
#include "watch.h"

#include <dpm/device-policy-manager.h>
#include <gtest/gtest.h>

namespace system_test {
namespace {

TEST(AccountDeletion, RestOfTheAccountsIsEnforced) {
    const Watch watch;
    watch.launchService();
    watch.send("req_update_policy", policyUpdate({alice(hardenedPolicy), bob(pinPolicy)}));
    ASSERT_EQ(enforcingAccount(), 1);

    watch.send("req_delete_account", "1");

    EXPECT_EQ(storedAccounts(watch.database()), std::vector<std::string>{"2"});
    EXPECT_EQ(settings(), (Settings{33, 4, 10, 0, 0, 0, 0, 1, 1, 1, 0}));
    EXPECT_EQ(enforcingAccount(), 2);
    EXPECT_EQ(tryToAdminister(), DPM_ERROR_NONE);
}

TEST(AccountDeletion, LastOneReleasesTheDevice) {
    const Watch watch;
    watch.launchService();
    watch.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));
    ASSERT_EQ(enforcingAccount(), 1);
    ASSERT_EQ(tryToAdminister(), DPM_ERROR_NONE);

    watch.send("req_delete_account", "1");

    EXPECT_EQ(storedAccounts(watch.database()), std::vector<std::string>{});
    EXPECT_EQ(settings(), releasedSettings);
    EXPECT_EQ(enforcingAccount(), 0);
    EXPECT_EQ(tryToAdminister(), DPM_ERROR_PERMISSION_DENIED);
    EXPECT_EQ(key(keys::passwordApplied), 1);
    EXPECT_EQ(key(keys::encryptionApplied), 1);
}

TEST(AccountDeletion, UnknownAccountLeavesTheOthers) {
    const Watch watch;
    watch.launchService();
    watch.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    watch.send("req_delete_account", "77");

    EXPECT_EQ(storedAccounts(watch.database()), std::vector<std::string>{"1"});
    EXPECT_EQ(tryToAdminister(), DPM_ERROR_NONE);
    EXPECT_EQ(enforcingAccount(), 1);
}

TEST(AccountDeletion, TextBehindTheNumberIsIgnored) {
    const Watch watch;
    watch.launchService();
    watch.send("req_update_policy", policyUpdate({alice(pinPolicy), {12, "twelve", pinPolicy}}));

    watch.send("req_delete_account", "12abc");

    EXPECT_EQ(storedAccounts(watch.database()), std::vector<std::string>{"1"});
}

TEST(AccountDeletion, TextThatIsNoNumberDeletesNothing) {
    const Watch watch;
    watch.launchService();
    watch.send("req_update_policy", policyUpdate({alice(pinPolicy)}));

    watch.send("req_delete_account", "alice");

    EXPECT_EQ(storedAccounts(watch.database()), std::vector<std::string>{"1"});
    EXPECT_EQ(watch.log().count("accountId is invalid"), 1);
}

TEST(AccountDeletion, AccountThatComesBackIsEnforcedAgain) {
    const Watch watch;
    watch.launchService();
    watch.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    watch.send("req_delete_account", "1");
    ASSERT_EQ(tryToAdminister(), DPM_ERROR_PERMISSION_DENIED);

    watch.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));

    EXPECT_EQ(settings(), (Settings{128, 16, 4, 4, 60, 1, 50, 0, 0, 0, 1}));
    EXPECT_EQ(tryToAdminister(), DPM_ERROR_NONE);
}

} // namespace
} // namespace system_test
