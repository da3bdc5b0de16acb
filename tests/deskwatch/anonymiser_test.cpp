#include "recording/anonymiser.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

TraceEvent message(const std::string& text) {
    return {{"in", "message"}, {"entries", {{"msg", text}}}};
}

TEST(Anonymiser, NameIsReplacedWhereverItStandsAndNothingElse) {
    Anonymiser anonymiser;
    const auto text = [&](const std::string& before) {
        return anonymiser.anonymised(message(before))["entries"]["msg"].get<std::string>();
    };
    EXPECT_EQ(
        text(R"({"accountName": "b\u00f6b@bank.example", "displayName": "Bo", "policy": "Bo"})"),
        R"({"accountName": "account1@example.com", "displayName": "account2@example.com", "policy": "account2@example.com"})");
    EXPECT_EQ(text("of b\xc3\xb6"
                   "b@bank.example, Bob"),
              "of account1@example.com, Bob");
    EXPECT_EQ(text(R"({"accountName": "policy"})"), R"({"accountName": "account3@example.com"})");
    EXPECT_EQ(text(R"({"policy": "account1@example.com)"), R"({"policy": "account1@example.com)") << "a member's name";
    const auto event = anonymiser.anonymised({{"out", "policy"}, {"extraData", {{"ACCOUNT_NAME", "policy"}}}});
    EXPECT_EQ(event.dump(), R"({"out":"policy","extraData":{"ACCOUNT_NAME":"account3@example.com"}})");
}

} // namespace
} // namespace deskwatch
