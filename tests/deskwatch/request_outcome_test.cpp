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
    R"({"msgId": "email-itpolicy-ind", "param": [{"accountId": 1, "accountName": "a", "policySet": {}}, {"accountId": 2},
        {"accountId": 3, "policySet": {}}]})");

TEST(RequestOutcome, FailureCountsForTheAccountThatItHappenedTo) {
    const RequestTraces traces{Accounts{row(1, "a"), row(3, "c")},
                               Accounts{row(1, "a"), row(3, "c")},
                               {line("addAccount", "Enter"), line("addAccount", "Leave"), line("addAccount", "Enter"),
                                line("__write", "db failure: disk I/O error"),
                                line("addAccount", "_db_update_rule_data failed: -1"), line("addAccount", "Leave")}};

    const auto outcome = outcomeOf(twoAccounts, traces);

    EXPECT_EQ(outcome.done(),
              (Lines{"account 1 (a): unchanged", "account 2: unchanged: it comes without a \"policySet\""}));
    EXPECT_EQ(outcome.notDone(), Lines{"account 3: refused: the store cannot be written: disk I/O error"});
}

TEST(RequestOutcome, WhatNeitherStoreNorLogShowIsNotClaimed) {
    const RequestTraces silent{Accounts{row(1, "a")}, Accounts{row(1, "b")}, {}};

    const auto outcome = outcomeOf(twoAccounts, silent);

    EXPECT_EQ(outcome.done().front(), "account 1 (a): updated") << "the store shows it";
    ASSERT_EQ(outcome.notDone().size(), 1U);
    EXPECT_EQ(outcome.notDone()[0].find("account 3: refused: it is not stored, and the log of this watch does not"),
              0U);
    auto longer = row(3, "");
    longer.push_back({"min_device_password_length", 9});
    const RequestTraces unchanged{Accounts{row(1, "a"), longer}, Accounts{row(1, "a"), longer}, {}};
    const auto full = outcomeOf(twoAccounts, unchanged);
    EXPECT_EQ(full.done().front(), "account 1 (a): unchanged") << "it is stored as it was sent";
    EXPECT_EQ(full.notDone().at(0).find("account 3: refused: it is not stored, and the log of this watch"), 0U);
    EXPECT_FALSE(outcomeOf(requests::remoteWipe(), silent).isDone());
    EXPECT_FALSE(outcomeOf({requests::checkPassword, ""}, silent).isDone());
}

TEST(RequestOutcome, TextThatTheLogDoesNotJudgeIsNotClaimed) {
    const auto outcome = outcomeOf(requests::policyUpdate("no message"), {Accounts{}, Accounts{}, {}});

    EXPECT_EQ(outcome.notDone(),
              Lines{"sent, and what became of it is unknown: it cannot be told what the service makes of this text"});
}

TEST(RequestOutcome, StoreThatCannotBeReadShowsNoDeletion) {
    for (const auto& traces :
         {RequestTraces{std::nullopt, Accounts{}, {}}, RequestTraces{Accounts{}, std::nullopt, {}}}) {
        EXPECT_EQ(outcomeOf(requests::accountDeletion(1), traces).notDone(),
                  Lines{"account 1: sent, and what became of it is unknown: the store cannot be read"});
    }
}

TEST(RequestOutcome, OnlyTheMessageOfThatKindInAnUpdateIsAWipe) {
    const auto wipe = requests::remoteWipe();
    EXPECT_TRUE(isWipe(wipe));
    EXPECT_FALSE(isWipe({requests::deleteAccount, wipe.argument}));
    EXPECT_FALSE(isWipe({wipe.name, "{}"}));
    EXPECT_FALSE(isWipe(twoAccounts));
}

TEST(RequestOutcome, RepetitionIsToldAfterWhatWasDone) {
    RequestOutcome outcome = outcomeOf(requests::accountDeletion(1), {Accounts{row(1, "a")}, Accounts{}, {}});
    outcome.repetitions = 2;

    EXPECT_EQ(
        outcome.done(),
        (Lines{"account 1: deleted",
               "the service ended before it had handled this; it was launched again and the request sent again"}));
    EXPECT_TRUE(outcome.isDone());
}

/// What the service logs of a request.
std::vector<ServiceLine> handled(const std::string& function, const ServiceLine& more) {
    return {line("__teskItpolicyReqCb", "Enter"), line(function, "Enter"), more, line("__teskItpolicyReqCb", "Leave")};
}

TEST(RequestOutcome, WhatOtherRequestsDidAtTheSameTimeIsNotTakenForItsOwn) {
    const std::string others = "the service handled other requests at the same time";
    const auto update = handled("createResponsedMsg", line("addAccount", "Enter"));
    const auto failure = handled("createResponsedMsg", line("setPolicy", "[EAS] Failed setPasswordHistory"));
    const auto deletion = handled("delAccount", line("delAccount", "Leave"));
    const Request sent = requests::policyUpdate(
        R"({"msgId": "email-itpolicy-ind", "param": [{"accountId": 1, "accountName": "\u001b\n", "policySet": {}}]})");
    const std::string account = "account 1 (��): ";
    const Accounts one{row(1, "a")};
    const auto linesOf = [](const Request& request, const Accounts& before, const Accounts& after,
                            std::vector<ServiceLine> log, const std::vector<ServiceLine>& more) {
        log.insert(log.end(), more.begin(), more.end());
        const auto outcome = outcomeOf(request, {before, after, std::move(log)});
        auto lines = outcome.done();
        for (const auto& refused : outcome.notDone()) {
            lines.push_back("not done: " + refused);
        }
        return lines;
    };
    const auto unfinished = std::vector<ServiceLine>(update.begin(), update.end() - 1);
    EXPECT_EQ(linesOf(sent, {}, {}, update, deletion), Lines{account + "stored: gone again, since " + others});
    EXPECT_EQ(linesOf(sent, one, one, unfinished, update), Lines{account + "unchanged"}) << "it was sent again";
    EXPECT_EQ(linesOf(sent, one, one, update, update),
              Lines{"not done: " + account + "sent, and what became of it is unknown: " + others});
    EXPECT_EQ(linesOf(requests::accountDeletion(1), one, one, deletion, failure),
              Lines{"account 1: deleted: stored again, since " + others})
        << "the failure is the other's";
    EXPECT_EQ(linesOf(requests::accountDeletion(1), {}, {}, update, deletion), Lines{"account 1: deleted"});
    const Lines unknown{"not done: account 1: sent, and what became of it is unknown: " + others,
                        "not done: refused by the platform: [EAS] Failed setPasswordHistory"};
    EXPECT_EQ(linesOf(requests::accountDeletion(1), one, one, {}, failure), unknown);
}

} // namespace
} // namespace deskwatch
