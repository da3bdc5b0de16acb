#include "TeskConsumerLockMgr.h"
#include "unit_test.h"

namespace {

class LockMgrTest : public UnitTest {
protected:
    LockMgrTest() {
        manager.init();
        journal.clear();
    }

    /// The wearer sets a lock, or takes it away with 0.
    void changeLock(int lockType) {
        journal.clear();
        platform.settings.setKeyAsDevice("db/setting/lock_type", lockType);
        platform.settings.deliverChanges();
    }

    void setApplied(int applied) { platform.settings.setKeyAsDevice("db/eas/password_policy_applied", applied); }

    Lines launches() const { return journal.calls({"app_control_send"}); }

    TeskConsumerLockMgr& manager = *TeskConsumerLockMgr::getInstance();
};

constexpr char mailLaunch[] = "app_control_send_launch_request com.velmor.quillon.consumer";
constexpr char encryptionLaunch[] = "app_control_send_launch_request com.velmor.dialset.encryption type=encrypt";

TEST_F(LockMgrTest, WatchesTheLockTypeAndReturnsThePlatformsCode) {
    EXPECT_EQ(manager.init(), 0);
    EXPECT_EQ(journal.calls(), Lines{"vconf_notify_key_changed db/setting/lock_type"});

    platform.faults.always("vconf_notify_key_changed", -1);
    EXPECT_EQ(manager.init(), -1);
}

TEST_F(LockMgrTest, LockTypeIsReadFromItsKey) {
    platform.settings.setKeyAsDevice("db/setting/lock_type", 2);

    EXPECT_EQ(manager.getLockType(), 2);
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
}

TEST_F(LockMgrTest, UnreadableLockTypeIsNone) {
    platform.settings.unset("db/setting/lock_type");

    EXPECT_EQ(manager.getLockType(), 0);
}

TEST_F(LockMgrTest, NewLockSatisfiesThePolicyAndReturnsToMail) {
    setApplied(0);

    changeLock(1);

    EXPECT_EQ(journal.calls({"vconf_set"}), Lines{"vconf_set_int db/eas/password_policy_applied 1"});
    EXPECT_EQ(launches(), Lines{mailLaunch});
    EXPECT_EQ(journal.logsOf("__lockTypeChangedCb"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(LockMgrTest, NewLockAsksForTheRequiredEncryptionFirst) {
    auto data = account(1);
    data.requireDeviceEncryption = 1;
    store({data});
    setApplied(0);

    changeLock(1);

    EXPECT_EQ(journal.calls({"vconf_set", "app_control_send"}),
              (Lines{"vconf_set_int db/eas/password_policy_applied 1", encryptionLaunch, mailLaunch}));
}

TEST_F(LockMgrTest, NewLockIsNotedBeforeTheEncryptionIsConsidered) {
    auto data = account(1);
    data.requireDeviceEncryption = 1;
    store({data});
    setApplied(0);

    changeLock(1);

    EXPECT_EQ(journal.calls({"vconf_set", "vconf_get_str db/ode"}),
              (Lines{"vconf_set_int db/eas/password_policy_applied 1", "vconf_get_str db/ode/crypto_state"}));
}

TEST_F(LockMgrTest, LockSettingsDuringTheTutorialStillReturnToMail) {
    auto data = account(1);
    data.requireDeviceEncryption = 1;
    store({data});
    setApplied(0);
    platform.settings.setKeyAsDevice("memory/private/com.velmor.hearth/tutorial_is_in_progress", 1);

    changeLock(1);

    EXPECT_EQ(launches(), Lines{mailLaunch});
}

TEST_F(LockMgrTest, NewLockOnAnEncryptedDeviceAsksForNothing) {
    auto data = account(1);
    data.requireDeviceEncryption = 1;
    store({data});
    setApplied(0);
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "encrypted");

    changeLock(1);

    EXPECT_EQ(launches(), Lines{mailLaunch});
}

TEST_F(LockMgrTest, RemovedLockReturnsToMailOnly) {
    setApplied(0);

    changeLock(0);

    EXPECT_EQ(journal.calls({"vconf_set"}), Lines{});
    EXPECT_EQ(launches(), Lines{mailLaunch});
}

TEST_F(LockMgrTest, UnsetAppliedKeyCountsAsNotApplied) {
    changeLock(2);

    EXPECT_EQ(platform.settings.integer("db/eas/password_policy_applied"), 1);
    EXPECT_EQ(launches(), Lines{mailLaunch});
}

TEST_F(LockMgrTest, SatisfiedPolicyIsOnlyLogged) {
    setApplied(1);

    changeLock(2);

    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "W Failed to get password policy applied value", "I Leave"}));
    EXPECT_EQ(launches(), Lines{});
    EXPECT_EQ(journal.calls({"vconf_set"}), Lines{});
}

TEST_F(LockMgrTest, SecondChangeFindsNothingLeftToDo) {
    setApplied(0);
    changeLock(1);

    changeLock(2);

    EXPECT_EQ(journal.warnings(), Lines{"W Failed to get password policy applied value"});
    EXPECT_EQ(launches(), Lines{});
}

using LockMgrCreationTest = UnitTest;

TEST_F(LockMgrCreationTest, ConstructorAndDestructorLogBareLinesUnderTheirNames) {
    { const TeskConsumerLockMgr manager; }

    EXPECT_EQ(journal.logsOf("TeskConsumerLockMgr"), Lines{"I "});
    EXPECT_EQ(journal.logsOf("~TeskConsumerLockMgr"), Lines{"I "});
    EXPECT_EQ(journal.logs().size(), 2U);
}

} // namespace
