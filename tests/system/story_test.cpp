#include "device_state.h"
#include "messages.h"
#include "process_handle.h"
#include "watch.h"

#include <dpm/device-policy-manager.h>
#include <gtest/gtest.h>

namespace system_test {
namespace {

/// What happens to a wearer with two accounts, from the first policy to the last deletion. One chapter per function, in
/// this order.
class Story : public testing::Test {
protected:
    void twoAccountsBringTheirPolicies() const {
        watch_.launchService();
        watch_.send("req_update_policy", policyUpdate({alice(hardenedPolicy), bob(limitsWithoutPasswordPolicy)}));

        EXPECT_EQ(settings(), (Settings{128, 4, 8, 3, 900, 365, 4, 1, 1, 1, 1}));
        EXPECT_EQ(enforcingAccount(), 1);
        EXPECT_EQ(key(keys::passwordApplied), 0);
        EXPECT_EQ(key(keys::encryptionApplied), 0);
        const auto popups = watch_.companions().launches(ids::popup);
        ASSERT_EQ(popups.size(), 1U);
        EXPECT_EQ(popups.at(0).extraData.at("ACCOUNT_NAME"), "alice@contoso.example");
        EXPECT_TRUE(popups.at(0).waits);
    }

    void wearerAgreesAndGetsTheLockSettings() const {
        watch_.companions().answer(ids::popup, "ok");

        EXPECT_EQ(watch_.companions().launches(ids::lockSettings),
                  std::vector({Launch{ids::service, false, {{"setting_state", "eas"}}}}));
    }

    void lockIsSetAndEncryptionAskedFor() const {
        setKey(keys::lockType, static_cast<int>(deskwatch::Lock::password));
        watch_.waitForLog("__lockTypeChangedCb", 2);

        EXPECT_EQ(key(keys::passwordApplied), 1);
        EXPECT_EQ(watch_.companions().launches(ids::encryptionPopup),
                  std::vector({Launch{ids::service, false, {{"type", "encrypt"}}}}));
        EXPECT_EQ(watch_.companions().launches(ids::mail), std::vector({Launch{ids::service, false, {}}}));
        EXPECT_EQ(watch_.log().count("REFRESH killer!"), 0) << "the encryption is still to come";
    }

    void encryptionIsDoneAndTheServiceEnds() const {
        const auto service = deskwatch::ProcessHandle::open(watch_.servicePid());
        ASSERT_TRUE(service);
        setKey(keys::cryptoState, "encrypted");
        setKey(keys::encryptionApplied, 1);

        EXPECT_TRUE(service->waitForEnd(std::chrono::seconds(30)));
        EXPECT_EQ(watch_.log().count("Goodbye World!"), 1);
    }

    void nextLaunchFindsEverythingInOrder() const {
        watch_.launchService();

        EXPECT_EQ(watch_.log().count("Hello World!"), 2);
        EXPECT_EQ(settings(), (Settings{128, 4, 8, 3, 900, 365, 4, 1, 1, 1, 1}));
        EXPECT_EQ(key(keys::passwordApplied), 1);
        EXPECT_EQ(key(keys::encryptionApplied), 1);
        EXPECT_EQ(watch_.companions().launches(ids::popup).size(), 1U);
    }

    void firstAccountGoesAndTheOtherStays() const {
        watch_.send("req_delete_account", "1");

        EXPECT_EQ(storedAccounts(watch_.database()), std::vector<std::string>{"2"});
        EXPECT_EQ(settings(), (Settings{0, 0, 8, 0, 900, 0, 0, 1, 1, 1, 0}));
        EXPECT_EQ(tryToAdminister(), DPM_ERROR_NONE);
    }

    void lastAccountGoesAndTheWatchIsFree() const {
        watch_.send("req_delete_account", "2");

        EXPECT_EQ(storedAccounts(watch_.database()), std::vector<std::string>{});
        EXPECT_EQ(settings(), releasedSettings);
        EXPECT_EQ(enforcingAccount(), 0);
        EXPECT_EQ(tryToAdminister(), DPM_ERROR_PERMISSION_DENIED);
    }

    const Watch watch_;
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
