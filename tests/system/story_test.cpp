#include <gtest/gtest.h>

#include "device/process_handle.h"
#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

/// What happens to a wearer with two accounts, from the first policy to the last deletion. One chapter per function, in
/// this order.
class Story : public testing::Test {
protected:
    void twoAccountsBringTheirPolicies() const {
        device_.launchService();
        device_.send("req_update_policy", policyUpdate({alice(hardenedPolicy), bob(limitsWithoutPasswordPolicy)}));

        EXPECT_EQ(settings(), bothEnforced_);
        EXPECT_EQ(enforcingAccount(), 1);
        EXPECT_EQ(key(keys::passwordApplied), 0);
        EXPECT_EQ(key(keys::encryptionApplied), 0);
        const auto popups = device_.companions().launches(ids::popup);
        ASSERT_EQ(popups.size(), 1U);
        EXPECT_EQ(popups.at(0).extraData.at("ACCOUNT_NAME"), "alice@contoso.example");
        EXPECT_TRUE(popups.at(0).waits);
    }

    void wearerAgreesAndGetsTheLockSettings() const {
        device_.companions().answer(ids::popup, "ok");

        EXPECT_EQ(device_.companions().launches(ids::lockSettings),
                  std::vector({Launch{ids::service, false, {{"setting_state", "eas"}}}}));
    }

    void lockIsSetAndEncryptionAskedFor() const {
        setKey(keys::lockType, static_cast<int>(deskwatch::Lock::Password));
        device_.waitForLog("__lockTypeChangedCb", 2);

        EXPECT_EQ(key(keys::passwordApplied), 1);
        EXPECT_EQ(device_.companions().launches(ids::encryptionPopup),
                  std::vector({Launch{ids::service, false, {{"type", "encrypt"}}}}));
        EXPECT_EQ(device_.companions().launches(ids::mail), std::vector({Launch{ids::service, false, {}}}));
        EXPECT_EQ(device_.log().count("REFRESH killer!"), 0) << "the encryption is still to come";
    }

    void encryptionIsDoneAndTheServiceEnds() const {
        const auto service = deskwatch::ProcessHandle::open(device_.servicePid());
        ASSERT_TRUE(service);
        setKey(keys::cryptoState, "encrypted");
        setKey(keys::encryptionApplied, 1);

        EXPECT_TRUE(service->waitForEnd(std::chrono::seconds(30)));
        EXPECT_EQ(device_.log().count("Goodbye World!"), 1);
    }

    void nextLaunchFindsEverythingInOrder() const {
        device_.launchService();

        EXPECT_EQ(device_.log().count("Hello World!"), 2);
        EXPECT_EQ(settings(), bothEnforced_);
        EXPECT_EQ(key(keys::passwordApplied), 1);
        EXPECT_EQ(key(keys::encryptionApplied), 1);
        EXPECT_EQ(device_.companions().launches(ids::popup).size(), 1U);
    }

    void firstAccountGoesAndTheOtherStays() const {
        device_.send("req_delete_account", "1");

        EXPECT_EQ(storedAccounts(device_.database()), std::vector<std::string>{"2"});
        EXPECT_EQ(settings(), limitsEnforced_);
        EXPECT_TRUE(isServiceAdministrator());
    }

    void lastAccountGoesAndTheWatchIsFree() const {
        device_.send("req_delete_account", "2");

        EXPECT_EQ(storedAccounts(device_.database()), std::vector<std::string>{});
        EXPECT_EQ(settings(), abandonedSettings);
        EXPECT_EQ(enforcingAccount(), 0);
        EXPECT_FALSE(isServiceAdministrator());
    }

    const TestDevice device_;
    const Settings limitsEnforced_ =
        with(releasedSettings, {{&Settings::failedAttempts, 8}, {&Settings::inactivity, 900}});
    const Settings bothEnforced_ =
        with(hardenedSettings, {{&Settings::failedAttempts, 8}, {&Settings::complexCharacters, 3}});
};

TEST_F(Story, WearerFromTheFirstPolicyToTheLastDeletion) {
    twoAccountsBringTheirPolicies();
    wearerAgreesAndGetsTheLockSettings();
    lockIsSetAndEncryptionAskedFor();
    encryptionIsDoneAndTheServiceEnds();
    nextLaunchFindsEverythingInOrder();
    firstAccountGoesAndTheOtherStays();
    lastAccountGoesAndTheWatchIsFree();
}

} // namespace
} // namespace system_test
