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

using KillerLifeTest = UnitTest;

TEST_F(KillerLifeTest, ConstructorAndDestructorLogBareLinesUnderTheirNames) {
    { const TeskConsumerKiller killer; }

    EXPECT_EQ(journal.logsOf("TeskConsumerKiller"), Lines{"I "});
    EXPECT_EQ(journal.logsOf("~TeskConsumerKiller"), Lines{"I "});
}

TEST_F(KillerTest, WatchesBothKeysInOrder) {
    platform.faults.always("vconf_notify_key_changed");

    killer.init();

    EXPECT_EQ(journal.calls(), (Lines{std::string("vconf_notify_key_changed ") + passwordKey,
                                      std::string("vconf_notify_key_changed ") + encryptionKey}));
    EXPECT_EQ(journal.logsOf("init"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.warnings(), Lines{}) << "a refusal is not logged";
}

TEST_F(KillerTest, EndsTheServiceOnceTenSecondsAfterTheTrigger) {
    setApplied(-1, 7); // any value but zero means done

    killer.tryStartKillTimer();

    EXPECT_EQ(journal.warnings(), (Lines{"W consumer can be killed: [true]", "W REFRESH killer!"}));
    EXPECT_EQ(journal.calls({"g_timeout"}), Lines{"g_timeout_add_seconds 10"});
    platform.system.passSeconds(9);
    EXPECT_FALSE(exited());
    platform.system.passSeconds(91);
    EXPECT_EQ(journal.calls({"service_app_exit"}), Lines{"service_app_exit"});
    EXPECT_EQ(journal.logsOf("operator()"), Lines{"I "});
    EXPECT_EQ(platform.system.timers(), 0U);
}

TEST_F(KillerTest, SecondTriggerStartsTheTenSecondsAgain) {
    setApplied(1, 1);
    killer.tryStartKillTimer();
    platform.system.passSeconds(9);
    journal.clear();

    killer.tryStartKillTimer();

    EXPECT_EQ(journal.calls({"g_"}), (Lines{"g_source_remove", "g_timeout_add_seconds 10"}));
    platform.system.passSeconds(9);
    EXPECT_FALSE(exited());
    platform.system.passSeconds(1);
    EXPECT_TRUE(exited());
}

TEST_F(KillerTest, TriggerAfterTheTimerHasFiredRemovesNothing) {
    setApplied(1, 1);
    killer.tryStartKillTimer();
    platform.system.passSeconds(10);
    journal.clear();

    killer.tryStartKillTimer();
    setApplied(0, 1);
    platform.system.passSeconds(10);
    killer.tryStartKillTimer();

    EXPECT_EQ(journal.calls({"g_source_remove"}), Lines{});
}

/// The values of the two keys, and the warnings of what is not done yet.
struct Outstanding {
    int password;
    int encryption;
    fake::Journal::Lines warnings;
};

TEST_F(KillerTest, WhatIsOutstandingIsLoggedAndStopsTheTimer) {
    constexpr char password[] = "W Password is not crated yet.";
    constexpr char encryption[] = "W Encryption is not completed yet.";
    for (const auto& row :
         {Outstanding{0, 1, {password}}, Outstanding{1, 0, {encryption}}, Outstanding{0, 0, {password, encryption}}}) {
        setApplied(1, 1);
        killer.tryStartKillTimer();
        setApplied(row.password, row.encryption);
        journal.clear();

        killer.tryStartKillTimer();
        auto expected = row.warnings;
        expected.insert(expected.end(), {"W consumer can be killed: [false]", "W STOP killer!"});
        EXPECT_EQ(journal.warnings(), expected);
        killer.tryStartKillTimer();
        EXPECT_EQ(journal.calls({"g_source_remove"}), Lines{"g_source_remove"}) << "once";
    }
    platform.system.passSeconds(100);
    EXPECT_FALSE(exited());
}

TEST_F(KillerTest, UnsetKeysKeepTheServiceAlive) {
    killer.tryStartKillTimer();

    EXPECT_EQ(journal.warnings().size(), 4U);
    EXPECT_EQ(platform.system.timers(), 0U);
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
