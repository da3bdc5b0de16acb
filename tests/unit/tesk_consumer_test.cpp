#include <message_port.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <functional>

#include "TeskConsumer.h"
#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerDbMgr.h"
#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerKiller.h"
#include "TeskConsumerLockMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "unit_test.h"

namespace {

class ConsumerTest : public UnitTest {
protected:
    /// Runs the service; `script` stands for its main loop.
    int run(const std::function<void()>& script = nullptr) {
        platform.service.duringMainLoop = script;
        std::string name = "tesk-agent";
        std::array<char*, 2> arguments{name.data(), nullptr};
        auto* const consumer = TeskConsumer::getInstance();
        consumer->init();
        return consumer->start(1, arguments.data());
    }

    Lines bringUp() const {
        return journal.calls(
            {"vconf_notify", "preference_", "app_get_data_path", "message_port", "dpm_password_set_q"});
    }
};

const std::vector<std::string> keyWatches{"vconf_notify_key_changed db/eas/password_policy_applied",
                                          "vconf_notify_key_changed db/eas/device_encryption_applied"};

TEST_F(ConsumerTest, ConstructorAndDestructorLogTheirBeginningAndEnd) {
    { const TeskConsumer consumer; }

    EXPECT_EQ(journal.logsOf("TeskConsumer"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.logsOf("~TeskConsumer"), (Lines{"I Enter", "I Leave"}));
}

template <typename Manager>
void expectOneInstance() {
    auto* const instance = Manager::getInstance();
    EXPECT_NE(instance, nullptr);
    EXPECT_EQ(Manager::getInstance(), instance);
}

TEST_F(ConsumerTest, EveryManagerIsMadeOnce) {
    expectOneInstance<TeskConsumer>();
    expectOneInstance<TeskConsumerAccountMgr>();
    expectOneInstance<TeskConsumerDbMgr>();
    expectOneInstance<TeskConsumerIpcMgr>();
    expectOneInstance<TeskConsumerKiller>();
    expectOneInstance<TeskConsumerLockMgr>();
    expectOneInstance<TeskConsumerPolicyMgr>();
}

TEST_F(ConsumerTest, ListensToThreeSystemEvents) {
    TeskConsumer consumer;
    consumer.init();

    EXPECT_EQ(journal.calls(), (Lines{"service_app_add_event_handler 0", "service_app_add_event_handler 1",
                                      "service_app_add_event_handler 3"}));
    for (const auto* handler : platform.service.handlers) {
        EXPECT_EQ(handler->userData, &consumer);
    }
    EXPECT_EQ(journal.logsOf("init"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(ConsumerTest, BringsEverythingUpInOrder) {
    EXPECT_EQ(run(), 0);

    EXPECT_EQ(bringUp(),
              (Lines{keyWatches[0], keyWatches[1], "preference_is_existing pref/tesk-agent/pwd_enforce_account_id",
                     "preference_set_int pref/tesk-agent/pwd_enforce_account_id 0", "app_get_data_path",
                     "message_port_register_local_port eas-itpolicy-port",
                     "vconf_notify_key_changed db/setting/lock_type", "message_port_unregister_local_port 1"}));
    EXPECT_EQ(journal.calls({"dpm_"}), Lines{}) << "no account asks for anything";
    EXPECT_EQ(journal.logsOf("start"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.logsOf("appCreated"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.logsOf("appTerminated"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(ConsumerTest, DiagnosticInterfaceIsAskedForFirst) {
    run();

    const auto lines = journal.all();
    const auto ownerId = std::find_if(lines.begin(), lines.end(),
                                      [](const std::string& line) { return line.rfind("I ownerId: [", 0) == 0; });
    ASSERT_NE(ownerId, lines.end());
    EXPECT_LT(ownerId, std::find(lines.begin(), lines.end(), keyWatches[0]));
}

TEST_F(ConsumerTest, StartWithAccountsAppliesTheirPolicyOnce) {
    store({passwordAccount(1)});

    EXPECT_EQ(run([&] { EXPECT_EQ(journal.deviceSettings().size(), 11U); }), 0);

    EXPECT_EQ(applications(), 1U);
    EXPECT_EQ(bringUp().at(5), "vconf_notify_key_changed db/setting/lock_type");
    const auto warnings = journal.warnings();
    EXPECT_EQ(std::count(warnings.begin(), warnings.end(), "W Password policy requires stronger password."), 1);
}

/// What ends a start before the main loop, and what is logged of it.
struct StartObstacle {
    const char* name;
    const char* function;
    int call;
    int code;
    fake::Journal::Lines errors;
};

class EndedStartTest : public ConsumerTest, public ::testing::WithParamInterface<StartObstacle> {};

TEST_P(EndedStartTest, IsLoggedAndTracedToItsEnd) {
    const auto& obstacle = GetParam();
    platform.faults.atCall(obstacle.function, obstacle.call, obstacle.code);

    EXPECT_EQ(run([] { FAIL() << "the main loop runs"; }), platform.service.refusal);

    EXPECT_EQ(journal.warnings(), obstacle.errors);
    EXPECT_EQ(journal.calls({"vconf_notify_key_changed db/setting", "dpm_"}), Lines{});
    EXPECT_EQ(journal.logsOf("appCreated").back(), "I Leave");
    EXPECT_EQ(journal.logsOf("start").back(), "I Leave");
    EXPECT_EQ(journal.logsOf("appTerminated"), Lines{});
}

// The first object is the application, the second the idle terminator.
INSTANTIATE_TEST_SUITE_P(
    , EndedStartTest,
    ::testing::Values(
        StartObstacle{"NoDatabaseManager", "operator new", 3, -1, {"E TeskConsumerDbMgr::getInstance() failed"}},
        StartObstacle{"NoPortManager", "operator new", 4, -1, {"E TeskConsumerIpcMgr::getInstance() failed"}},
        StartObstacle{"RefusedPort",
                      "message_port_register_local_port",
                      1,
                      MESSAGE_PORT_ERROR_IO_ERROR,
                      {"E Failed message port register. (-5)", "E ipcMgr->init() failed"}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ConsumerTest, FailedCountCountsAsNoAccount) {
    store({passwordAccount(1)});
    platform.faults.always("sqlite3_prepare_v2", SQLITE_ERROR);

    EXPECT_EQ(run(), 0);
    EXPECT_EQ(journal.logsOf("applyPolicy"), Lines{});
}

TEST_F(ConsumerTest, PortThatCannotBeClosedIsLogged) {
    platform.faults.always("message_port_unregister_local_port", MESSAGE_PORT_ERROR_IO_ERROR);

    EXPECT_EQ(run(), 0);
    EXPECT_EQ(journal.warnings(), (Lines{"E Failed message port unregister. (-5)", "W ipcMgr->init() failed"}));
}

TEST_F(ConsumerTest, MissingPortManagerAtTheEndIsLoggedAndThePortStillClosed) {
    platform.faults.atCall("operator new", 1);

    TeskConsumer::appTerminated(nullptr);

    EXPECT_EQ(journal.warnings(), (Lines{"W TeskConsumerIpcMgr::getInstance() failed",
                                         "E Failed message port unregister. (-22)", "W ipcMgr->init() failed"}));
}

TEST_F(ConsumerTest, EveryLaunchOnlyTriggersTheIdleTerminator) {
    run([&] {
        journal.clear();
        platform.service.launch();
        platform.service.launch({{"OPERATION", "anything"}});
        EXPECT_EQ(journal.logsOf("appControl"), (Lines{"I Enter", "I Leave", "I Enter", "I Leave"}));
        EXPECT_EQ(journal.logsOf("tryStartKillTimer").size(), 4U);
        EXPECT_EQ(
            journal.calls(),
            (Lines{"vconf_get_int db/eas/password_policy_applied", "vconf_get_int db/eas/device_encryption_applied",
                   "vconf_get_int db/eas/password_policy_applied", "vconf_get_int db/eas/device_encryption_applied"}));
    });
}

TEST_F(ConsumerTest, RequestsOfThePortAreNoTriggers) {
    run([&] {
        platform.settings.setKeyAsDevice("db/eas/password_policy_applied", 1);
        platform.settings.setKeyAsDevice("db/eas/device_encryption_applied", 1);
        platform.settings.deliverChanges();
        platform.system.passSeconds(9);
        platform.ports.deliver("chk_password_policy", "");
        platform.ports.deliver("req_unknown", "");
        platform.system.passSeconds(1);
        EXPECT_TRUE(platform.service.exited);
    });
}

TEST_F(ConsumerTest, SystemEventsChangeNothingButTheLog) {
    run([&] {
        journal.clear();
        platform.service.fire(APP_EVENT_LOW_MEMORY);
        platform.service.fire(APP_EVENT_LOW_BATTERY);
        platform.service.fire(APP_EVENT_DEVICE_ORIENTATION_CHANGED);
        EXPECT_EQ(journal.all(), (Lines{"I Enter", "W Low memory!", "I Leave", "I Enter", "W Low battery!", "I Leave",
                                        "I Enter", "I Leave"}));
        EXPECT_EQ(journal.logsOf("appLowMemory").size(), 3U);
        EXPECT_EQ(journal.logsOf("appLowBattery").size(), 3U);
        EXPECT_EQ(journal.logsOf("appDeviceOrientationChanged").size(), 2U);
    });
}

TEST_F(ConsumerTest, DeinitEndsTheApplication) {
    TeskConsumer::getInstance()->deinit();

    EXPECT_EQ(journal.calls(), Lines{"service_app_exit"});
    EXPECT_EQ(journal.logsOf("deinit"), (Lines{"I Enter", "I Leave"}));
}

} // namespace
