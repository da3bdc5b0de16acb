#include "TeskConsumerIpcMgr.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

/// Policies as administrators impose them, from the message to the device.
class RealLifePoliciesTest : public UnitTest {
protected:
    RealLifePoliciesTest() { TeskConsumerIpcMgr::getInstance()->init(); }

    void send(int accountId, const std::string& policySet) {
        journal.clear();
        platform.ports.deliver("req_update_policy", samples::indication(accountId, policySet));
    }

    /// The values of the last eleven writes: quality, length, attempts, complex characters, inactivity, expiry,
    /// history, Wi-Fi, messaging, POP and IMAP, encryption.
    std::vector<int> settings() const {
        std::vector<int> values;
        for (const auto* name : {"quality", "minimum_length", "maximum_failed_attempts_for_wipe", "min_complex_chars",
                                 "max_inactivity_time_device_lock", "expires", "history", "wifi_state",
                                 "messaging_state", "popimap_email_state", "internal_storage_encryption"}) {
            values.push_back(platform.devicePolicy.setting(name));
        }
        return values;
    }

    Lines launches() const { return journal.calls({"app_control_send"}); }
};

TEST_F(RealLifePoliciesTest, BuiltInPolicyEnforcesNothing) {
    send(1, samples::builtIn);

    EXPECT_EQ(settings(), (std::vector<int>{0, 0, 10, 0, 0, 0, 0, 1, 1, 1, 0}));
    EXPECT_EQ(launches(), Lines{});
    EXPECT_EQ(journal.deviceSettings().size(), 11U);
}

TEST_F(RealLifePoliciesTest, HardenedPolicyEnforcesEncryptionAndPassword) {
    send(1, samples::hardened);

    EXPECT_EQ(settings(), (std::vector<int>{128, 4, 10, 1, 900, 365, 4, 1, 1, 1, 1}));
    EXPECT_EQ(launches(),
              (Lines{"app_control_send_launch_request com.velmor.dialset.service "
                     "__OPERATION__=__ENABLE_ENCRYPTION_MENU__",
                     "app_control_send_launch_request com.velmor.tesk-popup OPERATION=SET_PRIVACY_LOCK "
                     "ACCOUNT_NAME=alice@contoso.example password_min_length=4 password_max_length=16 allow_simple=0 "
                     "password_required=1"}));
}

TEST_F(RealLifePoliciesTest, PolicyWithoutPasswordStillLimitsAttemptsAndInactivity) {
    send(1, samples::limitsWithoutPassword);

    EXPECT_EQ(settings(), (std::vector<int>{0, 0, 8, 0, 900, 0, 0, 1, 1, 1, 0}));
    EXPECT_EQ(launches(), Lines{});
}

TEST_F(RealLifePoliciesTest, StrictestPolicyForbidsEverything) {
    send(1, samples::strictest);

    EXPECT_EQ(settings(), (std::vector<int>{128, 16, 4, 4, 60, 1, 50, 0, 0, 0, 1}));
}

TEST_F(RealLifePoliciesTest, ThreeAccountsTogetherEnforceTheHardenedOne) {
    send(1, samples::builtIn);
    send(2, samples::hardened);
    send(3, samples::limitsWithoutPassword);

    EXPECT_EQ(settings(), (std::vector<int>{128, 4, 8, 3, 900, 365, 4, 1, 1, 1, 1}));
    EXPECT_EQ(std::get<int>(platform.preferences.at("pref/tesk-agent/pwd_enforce_account_id")), 2);
}

TEST_F(RealLifePoliciesTest, SecondAccountWithMoreAttemptsWeakensTheWatch) {
    send(1, samples::builtIn);
    EXPECT_EQ(settings()[2], 10);

    send(2, R"({"maxDevicePasswordFailedAttempts":16})");
    EXPECT_EQ(settings()[2], 16);
}

TEST_F(RealLifePoliciesTest, MissingPermissionsForbid) {
    send(1, "{}");

    EXPECT_EQ(settings(), (std::vector<int>{0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST_F(RealLifePoliciesTest, RemovedAccountGivesTheWatchBack) {
    send(1, samples::builtIn);
    send(2, samples::strictest);

    platform.ports.deliver("req_delete_account", "2");
    EXPECT_EQ(settings(), (std::vector<int>{0, 0, 10, 0, 0, 0, 0, 1, 1, 1, 0}));
    EXPECT_FALSE(platform.devicePolicy.clients.empty());

    platform.ports.deliver("req_delete_account", "1");
    EXPECT_TRUE(platform.devicePolicy.clients.empty());
    EXPECT_EQ(storedAccounts(), 0);
}

} // namespace
