#include <gtest/gtest.h>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

constexpr int off = 0;
constexpr int on = 1;

/// The launch request for the lock popup.
Launch lockRequest(const std::string& account, const char* minLength, const char* allowSimple,
                   const char* alphanumeric) {
    return {ids::service,
            true,
            {{"OPERATION", "SET_PRIVACY_LOCK"},
             {"ACCOUNT_NAME", account},
             {"password_min_length", minLength},
             {"password_max_length", "16"},
             {"allow_simple", allowSimple},
             {"password_required", alphanumeric}}};
}

TEST(PolicyUpdate, PolicyWithoutPasswordEnforcesNothing) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(defaultPolicy)}));

    EXPECT_EQ(settings(), (Settings{0, 0, 10, 0, 0, 0, 0, 1, 1, 1, off}));
    EXPECT_EQ(key(keys::passwordApplied), 1);
    EXPECT_EQ(key(keys::encryptionApplied), 1);
    EXPECT_EQ(key(keys::inputFinished), 0);
    EXPECT_EQ(enforcingAccount(), 0);
    EXPECT_FALSE(device.companions().isRunning(ids::popup));
    EXPECT_FALSE(device.companions().isRunning(ids::encryptionSettings));
}

TEST(PolicyUpdate, HardenedPolicyAsksForALockAndOffersEncryption) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(settings(), (Settings{128, 4, 10, 1, 900, 365, 4, 1, 1, 1, on}));
    EXPECT_EQ(key(keys::passwordApplied), 0);
    EXPECT_EQ(key(keys::encryptionApplied), 0);
    EXPECT_EQ(key(keys::inputFinished), std::nullopt);
    EXPECT_EQ(enforcingAccount(), 1);
    EXPECT_EQ(device.companions().launches(ids::popup),
              std::vector{lockRequest("alice@contoso.example", "4", "0", "1")});
    EXPECT_EQ(device.companions().launches(ids::encryptionSettings),
              std::vector({Launch{ids::service, false, {{"__OPERATION__", "__ENABLE_ENCRYPTION_MENU__"}}}}));
    EXPECT_EQ(device.log().count("Password policy requires stronger password."), 1);
}

TEST(PolicyUpdate, LimitsOfAPolicyWithoutPasswordAreEnforced) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(limitsWithoutPasswordPolicy)}));

    EXPECT_EQ(settings(), (Settings{0, 0, 8, 0, 900, 0, 0, 1, 1, 1, off}));
    EXPECT_FALSE(device.companions().isRunning(ids::popup));
}

TEST(PolicyUpdate, StrictestPolicyForbidsAndLimitsEverything) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));

    EXPECT_EQ(settings(), (Settings{128, 16, 4, 4, 60, 1, 50, 0, 0, 0, on}));
    EXPECT_EQ(device.companions().launches(ids::popup),
              std::vector{lockRequest("alice@contoso.example", "16", "0", "1")});
}

TEST(PolicyUpdate, PinPolicyAsksForASimpleLock) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));

    EXPECT_EQ(settings(), (Settings{33, 4, 10, 0, 0, 0, 0, 1, 1, 1, off}));
    EXPECT_EQ(device.companions().launches(ids::popup),
              std::vector{lockRequest("alice@contoso.example", "4", "1", "0")});
}

TEST(PolicyUpdate, ThreeAccountsAreMergedIntoTheStrongest) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy",
                policyUpdate({alice(defaultPolicy), bob(hardenedPolicy), carol(limitsWithoutPasswordPolicy)}));

    EXPECT_EQ(settings(), (Settings{128, 4, 8, 3, 900, 365, 4, 1, 1, 1, on}));
    EXPECT_EQ(enforcingAccount(), 2);
    EXPECT_EQ(device.companions().launches(ids::popup),
              std::vector{lockRequest("bob@fabrikam.example", "4", "0", "1")});
}

TEST(PolicyUpdate, EveryAccountHasARowWithItsWholePolicy) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    device.send("req_update_policy", policyUpdate({bob(strictestPolicy)}));

    EXPECT_EQ(storedRows(device.database()), (std::vector<Row>{
                                                 {"1",
                                                  "1",
                                                  "0",
                                                  "1",
                                                  "1",
                                                  "4",
                                                  "10",
                                                  "900",
                                                  "0",
                                                  "365",
                                                  "4",
                                                  "1",
                                                  "0",
                                                  "1",
                                                  "1",
                                                  "1",
                                                  "1",
                                                  "1",
                                                  "1",
                                                  "1",
                                                  "1",
                                                  "1",
                                                  "alice@contoso.example",
                                                  "alice@contoso.example"},
                                                 {"2",
                                                  "1",
                                                  "0",
                                                  "1",
                                                  "4",
                                                  "16",
                                                  "4",
                                                  "60",
                                                  "0",
                                                  "1",
                                                  "50",
                                                  "1",
                                                  "0",
                                                  "0",
                                                  "0",
                                                  "0",
                                                  "0",
                                                  "0",
                                                  "0",
                                                  "0",
                                                  "0",
                                                  "0",
                                                  "bob@fabrikam.example",
                                                  "bob@fabrikam.example"},
                                             }));
}

TEST(PolicyUpdate, SecondUpdateOfAnAccountReplacesItsRow) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));

    device.send("req_update_policy", policyUpdate({alice(defaultPolicy)}));

    EXPECT_EQ(storedRows(device.database()), (std::vector<Row>{{"1",
                                                                "0",
                                                                "1",
                                                                "0",
                                                                "1",
                                                                "0",
                                                                "0",
                                                                "0",
                                                                "0",
                                                                "0",
                                                                "0",
                                                                "0",
                                                                "0",
                                                                "1",
                                                                "1",
                                                                "1",
                                                                "1",
                                                                "1",
                                                                "1",
                                                                "1",
                                                                "1",
                                                                "1",
                                                                "alice@contoso.example",
                                                                "alice@contoso.example"}}));
    EXPECT_EQ(settings(), releasedSettings);
}

TEST(PolicyUpdate, NameOutsideAsciiReachesThePopupUnchanged) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({{7, "j\u00fcrgen\u20ac@b\u00fccher.example", pinPolicy}}));

    EXPECT_EQ(device.companions().launches(ids::popup),
              std::vector{lockRequest("j\u00fcrgen\u20ac@b\u00fccher.example", "4", "1", "0")});
    EXPECT_EQ(storedRows(device.database()).at(0).at(22), "j\u00fcrgen\u20ac@b\u00fccher.example");
}

TEST(PolicyUpdate, KoreanWatchAsksForSixCharacters) {
    const TestDevice device({{}, {}, "KR", {}});
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(settings().minLength, 6);
    EXPECT_EQ(device.companions().launches(ids::popup),
              std::vector{lockRequest("alice@contoso.example", "6", "0", "1")});
}

TEST(PolicyUpdate, EncryptedWatchIsNotAskedToEncrypt) {
    const TestDevice device({{}, true, {}, {}});
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(key(keys::encryptionApplied), 1);
    EXPECT_EQ(settings().encryption, off);
    EXPECT_FALSE(device.companions().isRunning(ids::encryptionSettings));
}

TEST(PolicyUpdate, NothingPopsUpDuringTheTutorial) {
    const TestDevice device({{}, {}, {}, true});
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));

    EXPECT_EQ(device.log().count("tutorial is not finished yet"), 1);
    EXPECT_FALSE(device.companions().isRunning(ids::popup));
    EXPECT_EQ(key(keys::passwordApplied), 0);
}

TEST(PolicyUpdate, LockThatIsStrongEnoughIsAcceptedOnceTheDeviceKnowsTheRules) {
    const TestDevice device({deskwatch::Lock::Password, {}, {}, {}});
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    ASSERT_EQ(key(keys::passwordApplied), 0) << "the device did not know the rules before";

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(key(keys::passwordApplied), 1);
    EXPECT_EQ(device.companions().launches(ids::popup).size(), 1U);
}

} // namespace
} // namespace system_test
