#include "commands_fixture.h"
#include "running_program.h"

namespace deskwatch {
namespace {

TEST_F(Commands, ExplainNamesWinnerLosersAndWhatBecameOfIt) {
    boot();
    run({"mail", "policy", sample("three-accounts.json")});

    const auto explained = Json::parse(run({"explain", "--json"}));

    Json attempts;
    for (const auto& field : explained["fields"]) {
        if (field["field"] == "max_device_password_failed_attempts") {
            attempts = field;
        }
    }
    EXPECT_EQ(attempts, Json::parse(R"json({"field": "max_device_password_failed_attempts",
        "rule": "the smallest value above 0 (0: no limit)", "accounts": [
            {"account": 1, "value": 0, "standing": "loses"}, {"account": 2, "value": 10, "standing": "loses"},
            {"account": 3, "value": 8, "standing": "wins"}],
        "winner": 3, "losers": [1, 2], "merged": 8,
        "setting": "maximum_failed_attempts_for_wipe", "demanded": 8, "now": 8})json"));
    EXPECT_EQ(explained["accounts"][1]["account"], 2);
    EXPECT_EQ(explained["password"]["enforcingAccount"], 2);
    EXPECT_EQ(explained["password"]["scores"][1]["score"], 22);
    EXPECT_EQ(explained["notes"][0]["accounts"], Json::parse("[3]"));
}

TEST_F(Commands, ExplanationIsWhatTheServiceDid) {
    boot({"--country", "KR"});
    run({"mail", "policy", sample("three-accounts.json"), sample("strictest.json"), sample("open-source-server.json")});

    const auto explained = Json::parse(run({"explain", "--json"}));
    const auto happened = status();

    ASSERT_EQ(explained["settings"].size(), happened["settings"].size());
    for (const auto& [name, values] : explained["settings"].items()) {
        EXPECT_EQ(values["demanded"], happened["settings"][name]) << name;
    }
    for (const auto& field : explained["fields"]) {
        EXPECT_EQ(field["merged"], happened["mergedPolicy"][field["field"].get<std::string>()]) << field;
    }
    EXPECT_EQ(explained["password"]["enforcingAccount"], happened["enforcingAccount"]);
}

TEST_F(Commands, FollowedExplanationTellsEachThatDiffers) {
    boot();
    RunningProgram follower({"explain", "--follow", "--json"});
    EXPECT_TRUE(Json::parse(follower.nextLine())["accounts"].empty());
    run({"mail", "policy", sample("hardened.json")});
    const auto line = follower.awaitLine(
        [](const std::string& text) { return Json::parse(text)["settings"]["quality"]["now"] == 128; });
    EXPECT_EQ(Json::parse(line)["password"]["enforcingAccount"], 2);
}

} // namespace
} // namespace deskwatch
