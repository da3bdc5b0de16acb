#include "TeskConsumerDbMgr.h"
#include "req_workers/TeskConsumerCheckOdeWorker.h"
#include "req_workers/TeskConsumerCheckPasswordWorker.h"
#include "req_workers/TeskConsumerDeleteAccountWorker.h"
#include "req_workers/TeskConsumerPolicyWorker.h"
#include "req_workers/TeskConsumerReqFactory.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

using ReqFactoryTest = UnitTest;

template <typename Worker>
bool isWorkerOf(const char* request) {
    return std::dynamic_pointer_cast<Worker>(TeskConsumerReqFactory::getWorker(request)) != nullptr;
}

TEST_F(ReqFactoryTest, EachRequestHasItsWorker) {
    EXPECT_TRUE(isWorkerOf<TeskConsumerPolicyWorker>("req_update_policy"));
    EXPECT_TRUE(isWorkerOf<TeskConsumerDeleteAccountWorker>("req_delete_account"));
    EXPECT_TRUE(isWorkerOf<TeskConsumerCheckPasswordWorker>("chk_password_policy"));
    EXPECT_TRUE(isWorkerOf<TeskConsumerCheckOdeWorker>("chk_device_encryption_policy"));
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(ReqFactoryTest, SelectionLogsItsBeginningAndEnd) {
    TeskConsumerReqFactory::getWorker("chk_password_policy");

    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.logsOf("getWorker").size(), 2U);
}

TEST_F(ReqFactoryTest, EachCallMakesANewWorker) {
    const auto first = TeskConsumerReqFactory::getWorker("chk_password_policy");
    EXPECT_NE(first, TeskConsumerReqFactory::getWorker("chk_password_policy"));
    EXPECT_EQ(first.use_count(), 1);
}

TEST_F(ReqFactoryTest, NamesAreMatchedExactly) {
    for (const auto* name : {"Req_update_policy", "req_update_policy ", " req_update_policy", "req_update", ""}) {
        journal.clear();
        EXPECT_EQ(TeskConsumerReqFactory::getWorker(name), nullptr);
        EXPECT_EQ(journal.logs(), (Lines{"I Enter", std::string("E Unsupported request : ") + name, "I Leave"}));
    }
}

class WorkerTest : public UnitTest {
protected:
    static constexpr char enforcingKey[] = "pref/tesk-agent/pwd_enforce_account_id";

    WorkerTest() { platform.preferences[enforcingKey] = 12; }

    int enforcingAccount() const { return std::get<int>(platform.preferences.at(enforcingKey)); }

    static int run(const char* request, const std::string& argument) {
        return TeskConsumerReqFactory::getWorker(request)->process(argument.c_str());
    }

    static bool isStored(int accountId) {
        return TeskConsumerDbMgr::getInstance()->checkPolicyByAccountId(accountId) == 0;
    }
};

using PolicyWorkerTest = WorkerTest;

TEST_F(PolicyWorkerTest, RunsTheMessage) {
    EXPECT_EQ(run("req_update_policy", samples::indication(3, samples::builtIn)), 0);

    EXPECT_TRUE(isStored(3));
}

TEST_F(PolicyWorkerTest, TextThatIsNoMessageIsLogged) {
    EXPECT_EQ(run("req_update_policy", "{}"), -1);

    EXPECT_EQ(journal.warnings(),
              (Lines{"E this is not request msgId: ", "W TeskConsumerRespMsgFactory::createResponsedMsg() failed"}));
    EXPECT_EQ(journal.calls({"dpm_"}), Lines{});
}

TEST_F(PolicyWorkerTest, MessageWithoutMemoryIsLogged) {
    platform.faults.atCall("operator new", 1);

    run("req_update_policy", samples::indication(3, samples::builtIn));

    EXPECT_EQ(journal.warnings(), Lines{"W TeskConsumerRespMsgFactory::createResponsedMsg() failed"});
}

using DeleteAccountWorkerTest = WorkerTest;

TEST_F(DeleteAccountWorkerTest, LastAccountLeavesNoEnforcingAccount) {
    store({account(12)});

    run("req_delete_account", "12");

    EXPECT_FALSE(isStored(12));
    EXPECT_EQ(enforcingAccount(), 0);
}

TEST_F(DeleteAccountWorkerTest, OneOfTwoAccountsLeavesTheEnforcingAccountAlone) {
    store({account(11), account(12)});

    EXPECT_EQ(run("req_delete_account", "11"), 0);

    EXPECT_FALSE(isStored(11));
    EXPECT_EQ(enforcingAccount(), 12);
}

TEST_F(DeleteAccountWorkerTest, TextBehindTheNumberIsIgnored) {
    store({account(1), account(12)});

    run("req_delete_account", "12abc");

    EXPECT_FALSE(isStored(12));
    EXPECT_TRUE(isStored(1));
}

TEST_F(DeleteAccountWorkerTest, BlanksAndSignBeforeTheNumberAreAccepted) {
    store({account(1), account(12)});

    run("req_delete_account", " \t+12");

    EXPECT_FALSE(isStored(12));
}

TEST_F(DeleteAccountWorkerTest, TextsThatAreNoNumberAskForAccountZero) {
    store({account(1)});
    for (const auto* text : {"", "abc", "{}", "-"}) {
        journal.clear();
        run("req_delete_account", text);
        EXPECT_EQ(journal.warnings().front(), "E accountId is invalid") << text;
        EXPECT_TRUE(isStored(1));
        EXPECT_EQ(enforcingAccount(), 12);
    }
}

TEST_F(DeleteAccountWorkerTest, EmptyTextWithoutAccountsStillResetsTheEnforcingAccount) {
    run("req_delete_account", "");

    EXPECT_EQ(enforcingAccount(), 0);
}

TEST_F(DeleteAccountWorkerTest, FailedCountResetsTheEnforcingAccount) {
    store({account(1), account(12)});
    platform.faults.always("sqlite3_prepare_v2", 1);

    run("req_delete_account", "1");

    EXPECT_EQ(enforcingAccount(), 0);
}

TEST_F(DeleteAccountWorkerTest, RefusedResetOfTheEnforcingAccountIsAWarning) {
    platform.faults.always("preference_set_int", -5);

    run("req_delete_account", "1");

    EXPECT_EQ(journal.warnings().back(), "W preference_set_int failed: [-5]");
}

TEST_F(DeleteAccountWorkerTest, NumberOutOfRangeDeletesNothing) {
    store({account(1)});

    run("req_delete_account", "99999999999999999999");
    run("req_delete_account", "-99999999999999999999");

    EXPECT_TRUE(isStored(1));
}

using CheckPasswordWorkerTest = WorkerTest;

TEST_F(CheckPasswordWorkerTest, LaunchesThePopupAndReturnsItsResult) {
    TeskConsumerCheckPasswordWorker worker;

    EXPECT_EQ(worker.process("ignored"), 0);
    EXPECT_EQ(platform.launches.sent.at(0).appId, "com.velmor.tesk-popup");

    platform.faults.always("app_control_create", -12);
    EXPECT_EQ(worker.process(""), -1);
}

using CheckOdeWorkerTest = WorkerTest;

TEST_F(CheckOdeWorkerTest, LaunchesNothingWhileThePasswordIsOutstanding) {
    EXPECT_EQ(run("chk_device_encryption_policy", ""), 0);
    platform.settings.setKeyAsDevice("db/eas/password_policy_applied", 0);
    EXPECT_EQ(run("chk_device_encryption_policy", ""), 0);

    EXPECT_TRUE(platform.launches.sent.empty());
}

TEST_F(CheckOdeWorkerTest, LaunchesTheEncryptionPopupOnceThePasswordIsThere) {
    platform.settings.setKeyAsDevice("db/eas/password_policy_applied", 1);

    EXPECT_EQ(run("chk_device_encryption_policy", "ignored"), 0);

    ASSERT_EQ(platform.launches.sent.size(), 1U);
    EXPECT_EQ(platform.launches.sent[0].appId, "com.velmor.dialset.encryption");
}

TEST_F(CheckOdeWorkerTest, AnyValueButZeroMeansThatThePasswordIsThere) {
    platform.settings.setKeyAsDevice("db/eas/password_policy_applied", -1);

    run("chk_device_encryption_policy", "");

    EXPECT_EQ(platform.launches.sent.size(), 1U);
}

} // namespace
