#include "TeskConsumerLockMgr.h"
#include "platform_values.h"
#include "unit_test.h"

namespace {

constexpr char mailLaunch[] = "app_control_send_launch_request com.velmor.quillon.consumer";
constexpr char encryptionLaunch[] = "app_control_send_launch_request com.velmor.dialset.encryption type=encrypt";

class LockMgrTest : public UnitTest {
protected:
    static constexpr char lockType[] = "db/setting/lock_type";
    static constexpr char applied[] = "db/eas/password_policy_applied";

    LockMgrTest() {
        manager.init();
        setApplied(0);
        journal.clear();
    }

    /// The wearer sets a lock, or takes it away.
    void changeLock(int lock) {
        journal.clear();
        platform.settings.setKeyAsDevice(lockType, lock);
        platform.settings.deliverChanges();
    }

    void setApplied(int value) { platform.settings.setKeyAsDevice(applied, value); }

    void requireEncryption() {
        auto data = account(1);
        data.requireDeviceEncryption = 1;
        store({data});
    }

    /// What is written and launched.
    Lines effects() const { return journal.calls({"vconf_set", "app_control_send"}); }

    const Lines noted{std::string("vconf_set_int ") + applied + " 1", mailLaunch};
    TeskConsumerLockMgr& manager = *TeskConsumerLockMgr::getInstance();
};

TEST_F(LockMgrTest, WatchesTheLockTypeAndReturnsThePlatformsCode) {
    platform.settings.ignoreAll();
    EXPECT_EQ(manager.init(), 0);
    EXPECT_EQ(journal.calls(), Lines{"vconf_notify_key_changed db/setting/lock_type"});

    platform.faults.always("vconf_notify_key_changed", -1);
    journal.clear();
    EXPECT_EQ(manager.init(), -1);
    EXPECT_EQ(journal.warnings(), Lines{"W vconf_notify_key_changed(db/setting/lock_type) failed: [-1]"});
}

TEST_F(LockMgrTest, KeyThatCannotBeWrittenIsLogged) {
    platform.faults.always("vconf_set_int", -1);

    changeLock(lock::pin);

    EXPECT_EQ(journal.logsOf("__lockTypeChangedCb").at(1),
              "W vconf_set_int(db/eas/password_policy_applied) failed: [-1]");
}

TEST_F(LockMgrTest, LockTypeIsReadFromItsKeyAndNoneWithoutIt) {
    platform.settings.setKeyAsDevice(lockType, lock::password);
    EXPECT_EQ(manager.getLockType(), lock::password);
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));

    platform.settings.unset(lockType);
    EXPECT_EQ(manager.getLockType(), lock::none);

    platform.settings.setKeyAsDevice(lockType, "a text");
    EXPECT_EQ(manager.getLockType(), lock::none) << "the getter that fails has overwritten the value";
}

TEST_F(LockMgrTest, NewLockSatisfiesThePolicyAndReturnsToMail) {
    changeLock(lock::pin);

    EXPECT_EQ(effects(), noted);
    EXPECT_EQ(journal.logsOf("__lockTypeChangedCb"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(LockMgrTest, NewLockIsNotedBeforeTheRequiredEncryptionIsAskedFor) {
    requireEncryption();

    changeLock(lock::pin);

    EXPECT_EQ(journal.calls({"vconf_set", "vconf_get_str db/ode", "app_control_send"}),
              (Lines{"vconf_set_int db/eas/password_policy_applied 1", "vconf_get_str db/ode/crypto_state",
                     encryptionLaunch, mailLaunch}));
}

TEST_F(LockMgrTest, NewLockOnAnEncryptedDeviceAsksForNothing) {
    requireEncryption();
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "encrypted");

    changeLock(lock::pin);

    EXPECT_EQ(effects(), noted);
}

TEST_F(LockMgrTest, RemovedLockReturnsToMailOnly) {
    changeLock(lock::none);

    EXPECT_EQ(effects(), Lines{mailLaunch});
}

TEST_F(LockMgrTest, UnsetAppliedKeyCountsAsNotApplied) {
    platform.settings.unset(applied);

    changeLock(lock::password);

    EXPECT_EQ(effects(), noted);
}

TEST_F(LockMgrTest, SatisfiedPolicyIsOnlyLogged) {
    setApplied(1);

    changeLock(lock::password);

    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "W Failed to get password policy applied value", "I Leave"}));
    EXPECT_EQ(effects(), Lines{});
}

using LockMgrLifeTest = UnitTest;

TEST_F(LockMgrLifeTest, ConstructorAndDestructorLogBareLinesUnderTheirNames) {
    { const TeskConsumerLockMgr manager; }

    EXPECT_EQ(journal.logsOf("TeskConsumerLockMgr"), Lines{"I "});
    EXPECT_EQ(journal.logsOf("~TeskConsumerLockMgr"), Lines{"I "});
}

} // namespace
