#include <algorithm>

#include "msgs/TeskConsumerAccountInfoRespMsg.h"
#include "msgs/TeskConsumerInitRespMsg.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

/// An account's entry in the mail application's lists.
std::string listed(int accountId, const std::string& policySet) {
    return R"({"id":)" + std::to_string(accountId) +
           R"(,"accountName":"alice@contoso.example","displayName":"Alice","policySet":)" + policySet + "}";
}

using AccountInfoTest = UnitTest;

std::shared_ptr<TeskConsumerAccountInfo> readEntry(const std::string& text) {
    g_autoptr(JsonParser) parser = json_parser_new();
    EXPECT_TRUE(json_parser_load_from_data(parser, text.c_str(), -1, nullptr)) << text;
    return TeskConsumerAccountInfo::getInstanceFromJsonObject(json_node_get_object(json_parser_get_root(parser)));
}

TEST_F(AccountInfoTest, EntryFillsTheAccountAndItsPolicy) {
    const auto info = readEntry(listed(7, samples::hardened));

    EXPECT_EQ(info->accountId, 7);
    EXPECT_EQ(info->accountName, "alice@contoso.example");
    EXPECT_EQ(info->displayName, "Alice");
    ASSERT_NE(info->policyInfo, nullptr);
    EXPECT_EQ(info->policyInfo->accountId, 7);
    EXPECT_EQ(info->policyInfo->accountName, "alice@contoso.example");
    EXPECT_EQ(info->policyInfo->displayName, "Alice");
    EXPECT_EQ(info->policyInfo->devicePasswordExpiration, 365);
}

TEST_F(AccountInfoTest, MissingMembersAreZeroAndEmpty) {
    for (const auto* text : {"{}", R"({"accountId":7})", R"({"id":"7","accountName":7,"displayName":null})"}) {
        journal.clear();
        const auto info = readEntry(text);
        EXPECT_EQ(info->accountId, 0) << text;
        EXPECT_EQ(info->accountName, "") << text;
        EXPECT_EQ(info->displayName, "") << text;
        EXPECT_EQ(info->policyInfo, nullptr);
        EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
    }
    EXPECT_EQ(TeskConsumerAccountInfo().accountId, 0);
}

/// One of the two messages that bring a list of accounts.
struct ListKind {
    const char* name;
    TeskConsumerResponsedMsg* (*create)();
    const char* begin;
    const char* end;
    const char* misplaced; ///< a message whose list is where the other kind has it
};

class AccountListTest : public UnitTest, public ::testing::WithParamInterface<ListKind> {
protected:
    static int read(const std::string& text) {
        return std::unique_ptr<TeskConsumerResponsedMsg>(GetParam().create())->fromJson(text);
    }

    int run(const std::string& text) {
        const std::unique_ptr<TeskConsumerResponsedMsg> message(GetParam().create());
        message->fromJson(text);
        return message->process();
    }

    static std::string list(const std::string& accounts) { return GetParam().begin + accounts + GetParam().end; }
};

TEST_P(AccountListTest, StoresEveryAccountWithAPolicyAndAppliesOnce) {
    std::string accounts;
    for (int id = 11; id < 20; ++id) {
        accounts += listed(id, samples::builtIn) + ",";
    }
    EXPECT_EQ(run(list("[" + accounts + R"({"id":8,"accountName":"b","displayName":"B"},1,null,"x",[],)" +
                       R"({"id":7,"policySet":{}},)" + listed(9, samples::limitsWithoutPassword) + "]")),
              0);

    EXPECT_EQ(storedAccounts(), 11);
    EXPECT_EQ(stored(7).accountName + stored(7).displayName, "");
    EXPECT_EQ(stored(9).accountName, "alice@contoso.example");
    EXPECT_EQ(stored(9).displayName, "Alice");
    EXPECT_EQ(stored(9).maxDevicePasswordFailedAttempts, 8);
    EXPECT_EQ(applications(), 1U);
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_P(AccountListTest, LastOfTwoEntriesOfOneAccountIsKept) {
    run(list(R"([{"id":7,"accountName":"a","policySet":{}},{"id":7,"accountName":"b","policySet":{}}])"));

    EXPECT_EQ(storedAccounts(), 1);
    EXPECT_EQ(stored(7).accountName, "b");
}

TEST_P(AccountListTest, NeverRemovesAnAccount) {
    store({account(3), account(8)});

    run(list(R"([{"id":8,"accountName":"b","displayName":"B"}])"));

    EXPECT_EQ(storedAccounts(), 2);
    EXPECT_EQ(stored(8).accountName, "");
    EXPECT_EQ(applications(), 1U);
}

TEST_P(AccountListTest, EmptyListAppliesOnce) {
    EXPECT_EQ(run(list("[]")), 0);

    EXPECT_EQ(applications(), 1U);
    EXPECT_EQ(journal.logsOf("process"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(read(list("[]")), 0);
}

TEST_P(AccountListTest, MissingListIsNotLogged) {
    for (const auto& text : {list("null"), list("{}"), list("\"x\""), list("5"), std::string(GetParam().misplaced)}) {
        EXPECT_EQ(read(text), -1);
        journal.clear();
        EXPECT_EQ(run(text), 0);
        EXPECT_EQ(journal.logs(DLOG_ERROR), Lines{}) << text;
        EXPECT_EQ(journal.logsOf("fromJson"), (Lines{"I Enter", "I Leave"}));
        EXPECT_EQ(applications(), 1U);
    }
    EXPECT_EQ(storedAccounts(), 0);
}

TEST_P(AccountListTest, TextsOfAnotherKindAreLoggedAndStillApplyOnce) {
    const std::vector<std::pair<std::string, std::string>> texts{
        {"", "E json_parser_get_root failed"},
        {"[]", "E json_node_get_object failed"},
        {R"({"msgId":"email-itpolicy-ind"})", "E msgId is diffrent"},
    };
    for (const auto& [text, error] : texts) {
        SCOPED_TRACE(text);
        EXPECT_EQ(read(text), -1);
        journal.clear();
        EXPECT_EQ(run(text), 0);
        EXPECT_EQ(journal.logs(DLOG_ERROR), Lines{error});
        EXPECT_EQ(applications(), 1U);
    }
}

TEST_P(AccountListTest, DemandForAStrongerLockIsOneWarning) {
    EXPECT_EQ(run(list("[" + listed(7, samples::hardened) + "]")), 0);

    const auto warnings = journal.warnings();
    EXPECT_EQ(std::count(warnings.begin(), warnings.end(), "W Password policy requires stronger password."), 1);
}

INSTANTIATE_TEST_SUITE_P(
    , AccountListTest,
    ::testing::Values(ListKind{"AccountInfo",
                               []() -> TeskConsumerResponsedMsg* { return new TeskConsumerAccountInfoRespMsg; },
                               R"({"msgId":"email-account-info","seqId":1,"accountId":)", "}",
                               R"({"msgId":"email-account-info","param":{"accountId":[{"id":7,"policySet":{}}]}})"},
                      ListKind{"InitResponse",
                               []() -> TeskConsumerResponsedMsg* { return new TeskConsumerInitRespMsg; },
                               R"({"msgId":"email-init-res","seqId":1,"param":{"accountId":)", "}}",
                               R"({"msgId":"email-init-res","param":{},"accountId":[{"id":7,"policySet":{}}]})"}),
    [](const auto& kind) { return std::string(kind.param.name); });

using AccountInfoMessageTest = UnitTest;

TEST_F(AccountInfoMessageTest, ConstructorAndDestructorLogBareLinesUnderTheirNames) {
    { const TeskConsumerAccountInfoRespMsg message; }

    EXPECT_EQ(journal.logsOf("TeskConsumerAccountInfoRespMsg"), Lines{"I "});
    EXPECT_EQ(journal.logsOf("~TeskConsumerAccountInfoRespMsg"), Lines{"I "});
}

} // namespace
