#include <app_control.h>
#include <app_preference.h>
#include <sqlite3.h>

#include "TeskConsumerDbMgr.h"
#include "req_workers/TeskConsumerCheckOdeWorker.h"
#include "req_workers/TeskConsumerCheckPasswordWorker.h"
#include "req_workers/TeskConsumerDeleteAccountWorker.h"
#include "req_workers/TeskConsumerPolicyWorker.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

class WorkerTest : public UnitTest {
protected:
    static constexpr char enforcingKey[] = "pref/tesk-agent/pwd_enforce_account_id";
    static constexpr char appliedKey[] = "db/eas/password_policy_applied";

    WorkerTest() { platform.preferences[enforcingKey] = 12; }

    int enforcingAccount() const { return std::get<int>(platform.preferences.at(enforcingKey)); }

    static int deleteAccount(const char* text) { return TeskConsumerDeleteAccountWorker().process(text); }

    static bool isStored(int accountId) {
        return TeskConsumerDbMgr::getInstance()->checkPolicyByAccountId(accountId) == 0;
    }
};

using PolicyWorkerTest = WorkerTest;

TEST_F(PolicyWorkerTest, RunsTheMessage) {
    EXPECT_EQ(TeskConsumerPolicyWorker().process(samples::indication(3, samples::builtIn).c_str()), 0);

    EXPECT_TRUE(isStored(3));
}

TEST_F(PolicyWorkerTest, TextThatIsNoMessageIsLogged) {
    EXPECT_EQ(TeskConsumerPolicyWorker().process("{}"), -1);

    EXPECT_EQ(journal.warnings(),
              (Lines{"E this is not request msgId: ", "W TeskConsumerRespMsgFactory::createResponsedMsg() failed"}));
    EXPECT_EQ(journal.calls({"dpm_"}), Lines{});
}

using DeleteAccountWorkerTest = WorkerTest;

TEST_F(DeleteAccountWorkerTest, OnlyTheLastAccountResetsTheEnforcingAccount) {
    store({account(11), account(12)});

    EXPECT_EQ(deleteAccount("11"), 0);
    EXPECT_FALSE(isStored(11));
    EXPECT_EQ(enforcingAccount(), 12);

    deleteAccount("12");
    EXPECT_FALSE(isStored(12));
    EXPECT_EQ(enforcingAccount(), 0);
}

TEST_F(DeleteAccountWorkerTest, NumberAtTheBeginningOfTheTextCounts) {
    for (const auto* text : {"12abc", " \t+12"}) {
        store({account(12)});
        deleteAccount(text);
        EXPECT_FALSE(isStored(12)) << text;
    }
}

TEST_F(DeleteAccountWorkerTest, TextsThatAreNoNumberAskForAccountZero) {
    store({account(1)});
    for (const auto* text : {"", "abc", "{}", "-"}) {
        journal.clear();
        deleteAccount(text);
        EXPECT_EQ(journal.warnings().front(), "E accountId is invalid") << text;
    }
    EXPECT_TRUE(isStored(1));
    EXPECT_EQ(enforcingAccount(), 12);
}

TEST_F(DeleteAccountWorkerTest, NumberOutOfRangeDeletesNothing) {
    store({account(1)});

    deleteAccount("99999999999999999999");
    deleteAccount("-99999999999999999999");

    EXPECT_TRUE(isStored(1));
}

TEST_F(DeleteAccountWorkerTest, FailedCountResetsTheEnforcingAccount) {
    store({account(1), account(12)});
    platform.faults.always("sqlite3_prepare_v2", SQLITE_ERROR);

    deleteAccount("1");

    EXPECT_EQ(enforcingAccount(), 0);
}

TEST_F(DeleteAccountWorkerTest, RefusedResetOfTheEnforcingAccountIsAWarning) {
    platform.faults.always("preference_set_int", PREFERENCE_ERROR_IO_ERROR);

    deleteAccount("1");

    EXPECT_EQ(journal.warnings().back(), "W preference_set_int failed: [-5]");
}

using CheckPasswordWorkerTest = WorkerTest;

TEST_F(CheckPasswordWorkerTest, LaunchesThePopupAndReturnsItsResult) {
    EXPECT_EQ(TeskConsumerCheckPasswordWorker().process("ignored"), 0);
    EXPECT_EQ(platform.launches.sent.at(0).appId, "com.velmor.tesk-popup");

    platform.faults.always("app_control_create", APP_CONTROL_ERROR_OUT_OF_MEMORY);
    EXPECT_EQ(TeskConsumerCheckPasswordWorker().process(""), -1);
}

using CheckOdeWorkerTest = WorkerTest;

TEST_F(CheckOdeWorkerTest, LaunchesNothingWhileThePasswordIsOutstanding) {
    EXPECT_EQ(TeskConsumerCheckOdeWorker().process(""), 0);
    platform.settings.setKeyAsDevice(appliedKey, 0);
    EXPECT_EQ(TeskConsumerCheckOdeWorker().process(""), 0);

    EXPECT_TRUE(platform.launches.sent.empty());
}

TEST_F(CheckOdeWorkerTest, AnyValueButZeroMeansThatThePasswordIsThere) {
    platform.settings.setKeyAsDevice(appliedKey, -1);

    EXPECT_EQ(TeskConsumerCheckOdeWorker().process("ignored"), 0);

    EXPECT_EQ(platform.launches.sent.at(0).appId, "com.velmor.dialset.encryption");
}

} // namespace
