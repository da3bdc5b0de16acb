#include "actors/request_outcome.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

using Lines = std::vector<std::string>;
using Accounts = std::vector<StoredAccount>;

StoredAccount row(int id, const std::string& name) {
    return {{"account_id", id}, {"account_name", name}};
}

ServiceLine line(const std::string& function, const std::string& text) {
    return {'I', "File.cpp", function, text};
}

const Request twoAccounts = requests::policyUpdate(
    R"({"msgId": "email-itpolicy-ind", "param": [{"accountId": 1, "policySet": {}}, {"accountId": 2},
        {"accountId": 3, "policySet": {}}]})");

TEST(RequestOutcome, FailureCountsForTheAccountThatItHappenedTo) {
    const RequestTraces traces{Accounts{row(1, "a"), row(3, "c")},
                               Accounts{row(1, "a"), row(3, "c")},
                               {line("addAccount", "Enter"), line("addAccount", "Leave"), line("addAccount", "Enter"),
                                line("__write", "db failure: disk I/O error"),
                                line("addAccount", "_db_update_rule_data failed: -1"), line("addAccount", "Leave")}};

    const auto outcome = outcomeOf(twoAccounts, traces);

    EXPECT_EQ(outcome.done(),
              (Lines{"account 1: unchanged", "account 2: unchanged: it comes without a \"policySet\""}));
    EXPECT_EQ(outcome.notDone(), Lines{"account 3: refused: the store cannot be written: disk I/O error"});
}

TEST(RequestOutcome, WhatNeitherStoreNorLogShowIsNotClaimed) {
    const RequestTraces silent{Accounts{row(1, "a")}, Accounts{row(1, "b")}, {}};

    const auto outcome = outcomeOf(twoAccounts, silent);

    EXPECT_EQ(outcome.done().front(), "account 1: updated") << "the store shows it";
    ASSERT_EQ(outcome.notDone().size(), 1U);
    EXPECT_EQ(outcome.notDone()[0].find("account 3: sent, and what became of it is unknown: "), 0U);
    EXPECT_FALSE(outcomeOf(requests::remoteWipe(), silent).isDone());
    EXPECT_FALSE(outcomeOf({requests::checkPassword, ""}, silent).isDone());
}

} // namespace
} // namespace deskwatch
