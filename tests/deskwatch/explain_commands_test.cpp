#include "commands_fixture.h"
#include "device/application_ids.h"

namespace deskwatch {
namespace {

/// What applications got, in order and once each.
std::vector<std::string> launched(const Json& status) {
    std::vector<std::string> applications;
    for (const auto& launch : status["launches"]) {
        applications.push_back(launch["application"]);
    }
    return applications;
}

Json after(const Json& changes) {
    Json values;
    for (const auto& [name, change] : changes.items()) {
        values[name] = change["after"];
    }
    return values;
}

TEST_F(Commands, WhatifTouchesNothingAndComesTrue) {
    boot({"--country", "KR"});
    const std::vector<std::string> files{sample("three-accounts.json"), sample("strictest.json")};

    const auto foreseen = Json::parse(run({"whatif", "--json", files[0], files[1]}));
    const auto untouched = status();
    run({"mail", "policy", files[0], files[1]});
    const auto happened = status();

    EXPECT_FALSE(untouched["serviceRunning"]);
    EXPECT_TRUE(untouched["accounts"].empty());
    EXPECT_EQ(foreseen["settings"]["minimum_length"]["before"], 0);
    EXPECT_EQ(after(foreseen["settings"]), happened["settings"]);
    EXPECT_EQ(foreseen["screens"].size(), launched(happened).size());
    EXPECT_EQ(foreseen["accounts"].size(), happened["accounts"].size());
}

TEST_F(Commands, WhatifForeseesThatTheServiceEnforcesWhatIsStoredWhenItStarts) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    run({"off"});
    boot();

    const auto screens = Json::parse(run({"whatif", "--json", sample("exchange-default.json")}))["screens"];

    ASSERT_EQ(screens.size(), 4U) << screens;
    EXPECT_EQ(screens[1]["application"], ids::popup);
    EXPECT_EQ(screens[1]["source"], "start of the service");
}

TEST_F(Commands, WhatifReadsEveryKindOfMessage) {
    boot();
    const auto text = run({"whatif", sample("account-info.json"), sample("init-response.json"),
                           sample("remote-wipe.json"), write("odd.json", R"({"msgId":"odd"})").string()});
    EXPECT_NE(text.find("bob@fabrikam.example"), std::string::npos) << text;
    EXPECT_NE(text.find("replaced"), std::string::npos) << text;
    EXPECT_NE(text.find("remote-wipe.json wipes the internal storage"), std::string::npos) << text;
    EXPECT_NE(text.find("odd.json is no message that the service knows"), std::string::npos) << text;
}

TEST_F(Commands, WhatifSaysThatTheTutorialKeepsThePopupClosed) {
    boot({"--tutorial"});
    const auto foreseen = Json::parse(run({"whatif", "--json", sample("hardened.json")}));
    ASSERT_EQ(foreseen["screens"].size(), 1U);
    EXPECT_EQ(foreseen["screens"][0]["application"], ids::encryptionSettings);
    EXPECT_NE(foreseen["remarks"][0].get<std::string>().find("tutorial"), std::string::npos);
}

TEST_F(Commands, WhatifRefusesAFileThatIsNoJson) {
    boot();
    const auto outcome = deskwatchProgram({"whatif", write("broken.json", "{").string()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors.find("deskwatch: whatif: "), 0U) << outcome.errors;
}

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
    EXPECT_EQ(attempts, Json::parse(R"({"field": "max_device_password_failed_attempts",
        "rule": "the smallest value but 0, which is no limit", "accounts": [
            {"account": 1, "value": 0, "standing": "loses"}, {"account": 2, "value": 10, "standing": "loses"},
            {"account": 3, "value": 8, "standing": "wins"}],
        "winner": 3, "losers": [1, 2], "merged": 8,
        "setting": "maximum_failed_attempts_for_wipe", "written": 8, "now": 8})"));
    EXPECT_EQ(explained["password"]["enforcingAccount"], 2);
    EXPECT_EQ(explained["password"]["scores"][1]["score"], 22);
    EXPECT_EQ(explained["notes"][0]["accounts"], Json::parse("[3]"));
}

TEST_F(Commands, ExplainOfAFreshWatchSaysThatNothingIsWritten) {
    boot();
    const auto explained = Json::parse(run({"explain", "--json"}));
    EXPECT_TRUE(explained["accounts"].empty());
    EXPECT_TRUE(explained["settings"]["quality"]["written"].is_null());
    EXPECT_NE(run({"explain"}).find("no account requires one"), std::string::npos);
    EXPECT_FALSE(status()["serviceRunning"]);
}

} // namespace
} // namespace deskwatch
