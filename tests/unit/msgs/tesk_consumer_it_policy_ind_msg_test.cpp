#include <sqlite3.h>

#include <algorithm>

#include "TeskConsumerDbMgr.h"
#include "msgs/TeskConsumerItPolicyIndMsg.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

class ItPolicyIndMsgTest : public UnitTest {
protected:
    /// Reads and runs a message with this list of accounts.
    int run(const std::string& accounts) {
        EXPECT_EQ(message.fromJson(samples::indicationOf("[" + accounts + "]")), 0);
        return message.process();
    }

    TeskConsumerItPolicyIndMsg message;
};

TEST_F(ItPolicyIndMsgTest, StoresEveryAccountAndAppliesOnce) {
    EXPECT_EQ(run(samples::entry(1, samples::builtIn) + "," + samples::entry(2, samples::limitsWithoutPassword)), 0);

    EXPECT_EQ(storedAccounts(), 2);
    EXPECT_EQ(stored(1).accountName, "alice@contoso.example");
    EXPECT_EQ(stored(1).displayName, "alice@contoso.example");
    EXPECT_EQ(stored(2).maxDevicePasswordFailedAttempts, 8);
    EXPECT_EQ(applications(), 1U);
    EXPECT_EQ(journal.logsOf("process"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(ItPolicyIndMsgTest, PolicyManagerComesUpBeforeTheFirstAccount) {
    message.fromJson(samples::indication(1, samples::builtIn));
    journal.clear();

    message.process();

    const auto all = journal.all();
    const auto creation = std::find(all.begin(), all.end(), "dpm_manager_create");
    EXPECT_EQ(std::count(all.begin(), creation, "I Enter"), 1) << "the message's own";
}

TEST_F(ItPolicyIndMsgTest, EntriesWithoutPolicySetAreSkippedSilently) {
    run(R"(1,null,"x",[],{},{"accountId":1,"accountName":"a"},{"accountId":2,"policySet":7},)"
        R"({"accountId":4,"policySet":null},{"accountId":5,"policySet":[]},)" +
        samples::entry(3, samples::builtIn));

    EXPECT_EQ(storedAccounts(), 1);
    EXPECT_EQ(journal.logs(DLOG_ERROR), Lines{});
}

TEST_F(ItPolicyIndMsgTest, MissingNameIsEmpty) {
    run(R"({"accountId":1,"policySet":{}},{"accountId":2,"accountName":null,"policySet":{}},)"
        R"({"accountId":3,"accountName":5,"policySet":{}})");

    EXPECT_EQ(storedAccounts(), 3);
    EXPECT_EQ(stored(1).accountName + stored(2).accountName + stored(3).accountName, "");
}

TEST_F(ItPolicyIndMsgTest, EntriesWithoutAValidAccountIdAreNotStored) {
    run(R"({"accountName":"a","policySet":{}},{"accountId":"1","policySet":{}},{"accountId":-3,"policySet":{}})");

    EXPECT_EQ(storedAccounts(), 0);
    EXPECT_EQ(journal.logs(DLOG_ERROR), Lines(3, "E accountId is invalid"));
    EXPECT_EQ(applications(), 1U);
}

TEST_F(ItPolicyIndMsgTest, TextsThatAreNoIndicationAreLoggedAndStillApplyOnce) {
    const std::vector<std::pair<std::string, std::string>> texts{
        {"", "E json_parser_get_root failed"},
        {"[]", "E json_node_get_object failed"},
        {R"({"msgId":"email-account-info"})", "E msgId is diffrent"},
        {R"({"msgId":"email-itpolicy-ind"})", "E json_object_get_object_member failed"},
        {samples::indicationOf("{}"), "E json_object_get_object_member failed"},
        {samples::indicationOf("\"x\""), "E json_object_get_object_member failed"},
        {samples::indicationOf("null"), "E json_object_get_object_member failed"},
    };
    for (const auto& [text, error] : texts) {
        SCOPED_TRACE(text);
        journal.clear();
        TeskConsumerItPolicyIndMsg odd;
        EXPECT_EQ(odd.fromJson(text), -1);
        EXPECT_EQ(journal.logsOf("fromJson").front(), "I Enter");
        EXPECT_EQ(journal.logsOf("fromJson").back(), "I Leave");
        EXPECT_EQ(journal.warnings(), Lines{error});
        EXPECT_EQ(odd.process(), 0);
        EXPECT_EQ(applications(), 1U);
        EXPECT_EQ(storedAccounts(), 0);
    }
}

TEST_F(ItPolicyIndMsgTest, FailureOfOneAccountDoesNotStopTheOthers) {
    TeskConsumerDbMgr::getInstance();
    // Of the first account: the search, the count and the insert.
    platform.faults.atCall("sqlite3_step", 3, SQLITE_FULL);

    run(samples::entry(1, samples::builtIn) + "," + samples::entry(2, samples::builtIn));

    EXPECT_EQ(storedAccounts(), 1);
    EXPECT_EQ(stored(2).accountId, 2);
}

TEST_F(ItPolicyIndMsgTest, DemandForAStrongerLockIsOneWarning) {
    EXPECT_EQ(run(samples::entry(1, samples::hardened)), 0);

    const auto warnings = journal.warnings();
    EXPECT_EQ(std::count(warnings.begin(), warnings.end(), "W Password policy requires stronger password."), 1);
    EXPECT_EQ(warnings.back(), "W Password policy requires stronger password.");
}

} // namespace
