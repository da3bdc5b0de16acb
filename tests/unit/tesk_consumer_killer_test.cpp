#include "TeskConsumerKiller.h"
#include "unit_test.h"

namespace {

constexpr char passwordKey[] = "db/eas/password_policy_applied";
constexpr char encryptionKey[] = "db/eas/device_encryption_applied";

class KillerTest : public UnitTest {
protected:
    /// Sets both keys without telling the watchers.
    void setApplied(int password, int encryption) {
        platform.settings.setKeyAsDevice(passwordKey, password);
        platform.settings.setKeyAsDevice(encryptionKey, encryption);
    }

    bool exited() const { return platform.service.exited; }

    TeskConsumerKiller& killer = *TeskConsumerKiller::getInstance();
};

TEST_F(KillerTest, ConstructorLogsABareLineUnderItsName) {
    EXPECT_EQ(journal.logsOf("TeskConsumerKiller"), Lines{"I "});
}

using KillerEndTest = UnitTest;

TEST_F(KillerEndTest, DestructorLogsABareLineUnderItsName) {
    { const TeskConsumerKiller killer; }

    EXPECT_EQ(journal.logsOf("~TeskConsumerKiller"), Lines{"I "});
}

TEST_F(KillerTest, WatchesBothKeysInOrder) {
    killer.init();

    EXPECT_EQ(journal.calls(), (Lines{std::string("vconf_notify_key_changed ") + passwordKey,
                                      std::string("vconf_notify_key_changed ") + encryptionKey}));
    EXPECT_EQ(journal.logsOf("init"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(KillerTest, RefusedWatchesAreNotLogged) {
    platform.faults.always("vconf_notify_key_changed");

    killer.init();

    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(KillerTest, EndsTheServiceTenSecondsAfterTheTrigger) {
    setApplied(1, 1);

    killer.tryStartKillTimer();

    EXPECT_EQ(journal.warnings(), (Lines{"W consumer can be killed: [true]", "W REFRESH killer!"}));
    EXPECT_EQ(journal.calls({"g_timeout"}), Lines{"g_timeout_add_seconds 10"});
    platform.system.passSeconds(9);
    EXPECT_FALSE(exited());
    platform.system.passSeconds(1);
    EXPECT_TRUE(exited());
    EXPECT_EQ(journal.logsOf("operator()"), Lines{"I "});
}

TEST_F(KillerTest, SecondTriggerStartsTheTenSecondsAgain) {
    setApplied(1, 1);
    killer.tryStartKillTimer();
    platform.system.passSeconds(9);

    killer.tryStartKillTimer();

    platform.system.passSeconds(9);
    EXPECT_FALSE(exited());
    EXPECT_EQ(platform.system.timers(), 1U);
    platform.system.passSeconds(1);
    EXPECT_TRUE(exited());
}

TEST_F(KillerTest, OldTimerGoesBeforeTheNewOneComes) {
    setApplied(1, 1);
    killer.tryStartKillTimer();
    journal.clear();

    killer.tryStartKillTimer();

    EXPECT_EQ(journal.calls({"g_"}), (Lines{"g_source_remove", "g_timeout_add_seconds 10"}));
}

TEST_F(KillerTest, TimerFiresOnce) {
    setApplied(1, 1);
    killer.tryStartKillTimer();

    platform.system.passSeconds(100);

    EXPECT_EQ(journal.calls({"service_app_exit"}), Lines{"service_app_exit"});
    EXPECT_EQ(platform.system.timers(), 0U);
}

TEST_F(KillerTest, TriggerBehindAFiredTimerRemovesNothing) {
    setApplied(1, 1);
    killer.tryStartKillTimer();
    platform.system.passSeconds(10);
    journal.clear();

    killer.tryStartKillTimer();
    platform.settings.setKeyAsDevice(passwordKey, 0);
    platform.system.passSeconds(10);
    killer.tryStartKillTimer();

    EXPECT_EQ(journal.calls({"g_source_remove"}), Lines{});
}

TEST_F(KillerTest, StoppedTimerIsRemovedOnce) {
    setApplied(1, 1);
    killer.tryStartKillTimer();
    setApplied(0, 1);
    journal.clear();

    killer.tryStartKillTimer();
    killer.tryStartKillTimer();

    EXPECT_EQ(journal.calls({"g_source_remove"}), Lines{"g_source_remove"});
}

TEST_F(KillerTest, MissingPasswordStopsTheTimer) {
    setApplied(1, 1);
    killer.tryStartKillTimer();
    setApplied(0, 1);
    journal.clear();

    killer.tryStartKillTimer();

    EXPECT_EQ(journal.warnings(),
              (Lines{"W Password is not crated yet.", "W consumer can be killed: [false]", "W STOP killer!"}));
    platform.system.passSeconds(100);
    EXPECT_FALSE(exited());
}

TEST_F(KillerTest, MissingEncryptionStopsTheTimer) {
    setApplied(1, 0);

    killer.tryStartKillTimer();

    EXPECT_EQ(journal.warnings(),
              (Lines{"W Encryption is not completed yet.", "W consumer can be killed: [false]", "W STOP killer!"}));
    EXPECT_EQ(platform.system.timers(), 0U);
}

TEST_F(KillerTest, BothMissingAreBothLogged) {
    setApplied(0, 0);

    killer.tryStartKillTimer();

    EXPECT_EQ(journal.warnings(), (Lines{"W Password is not crated yet.", "W Encryption is not completed yet.",
                                         "W consumer can be killed: [false]", "W STOP killer!"}));
}

TEST_F(KillerTest, UnsetKeysKeepTheServiceAlive) {
    killer.tryStartKillTimer();

    EXPECT_EQ(journal.warnings().size(), 4U);
    EXPECT_EQ(platform.system.timers(), 0U);
}

TEST_F(KillerTest, AnyValueButZeroMeansDone) {
    setApplied(-1, 7);

    killer.tryStartKillTimer();

    EXPECT_EQ(platform.system.timers(), 1U);
}

TEST_F(KillerTest, ChangedKeyIsATrigger) {
    killer.init();
    setApplied(1, 0);
    platform.settings.deliverChanges();
    EXPECT_EQ(platform.system.timers(), 0U);
    journal.clear();

    platform.settings.setKeyAsDevice(encryptionKey, 1);
    platform.settings.deliverChanges();

    EXPECT_EQ(platform.system.timers(), 1U);
    EXPECT_EQ(journal.logs().front(), "I ");
    EXPECT_EQ(journal.logsOf("operator()"), Lines{"I "});
}

TEST_F(KillerTest, OperationsLogTheirBeginningAndEnd) {
    setApplied(1, 1);
    killer.tryStartKillTimer();
    setApplied(0, 1);
    killer.tryStartKillTimer();

    EXPECT_EQ(journal.logsOf("tryStartKillTimer"), (Lines{"I Enter", "I Leave", "I Enter", "I Leave"}));
    EXPECT_EQ(journal.logsOf("__canBeKilled").front(), "I Enter");
    EXPECT_EQ(journal.logsOf("__canBeKilled").back(), "I Leave");
    EXPECT_EQ(journal.logsOf("__refreshKiller"), (Lines{"I Enter", "W REFRESH killer!", "I Leave"}));
    EXPECT_EQ(journal.logsOf("__stopKiller"), (Lines{"I Enter", "W STOP killer!", "I Leave"}));
}

} // namespace
