#include "commands_fixture.h"
#include "records/policy_database.h"

namespace deskwatch {
namespace {

class CheckCommand : public Commands {
protected:
    /// The kinds of what is found.
    static std::vector<std::string> kinds(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{"check", "--json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const auto outcome = deskwatchProgram(arguments);
        std::vector<std::string> kinds;
        const auto result = Json::parse(outcome.output);
        for (const auto& finding : result.at("findings")) {
            kinds.push_back(finding.at("kind"));
            EXPECT_NE(finding.at("text"), "");
        }
        EXPECT_EQ(outcome.status, kinds.empty() ? 0 : 3) << outcome.errors;
        return kinds;
    }

    using Kinds = std::vector<std::string>;
};

TEST_F(CheckCommand, WatchThatKeepsItsWordHasNoFinding) {
    boot({"--lock", "password", "--encrypted"});
    run({"mail", "policy", sample("hardened.json")});
    EXPECT_EQ(kinds(), Kinds{"lock"}) << "nobody knows how strong it is";
    run({"lock", "password"});

    EXPECT_EQ(run({"check"}), "the watch is as strict as its accounts want\n");
    EXPECT_EQ(kinds(), Kinds{});
}

TEST_F(CheckCommand, RefusedRuleIsFoundUntilItIsWritten) {
    boot({"--lock", "password", "--encrypted"});
    run({"fault", "dpm_password_set_minimum_length", "-13"});
    deskwatchProgram({"mail", "policy", sample("hardened.json")});
    run({"lock", "password"});
    EXPECT_EQ(kinds(), Kinds{"refused"});

    run({"fault", "--clear"});
    run({"mail", "policy", sample("hardened.json")});
    run({"lock", "password"});

    EXPECT_EQ(kinds(), Kinds{});
}

TEST_F(CheckCommand, WatchThatIsOffIsLookedAtByWhatItKeeps) {
    boot({"--lock", "password", "--encrypted"});
    run({"fault", "dpm_password_set_minimum_length", "-13"});
    deskwatchProgram({"mail", "policy", sample("hardened.json")});
    run({"lock", "password"});
    run({"mail", "wipe"});
    const auto explanation = run({"explain", "--json"});
    run({"off"});
    setenv("DESKWATCH_DEVICE", device().layout().folder().c_str(), 1);

    EXPECT_EQ(kinds(), Kinds{"refused"}) << "its log tells";
    EXPECT_EQ(deskwatchProgram({"check"}).output.find("the internal storage was wiped since the boot: "), 0U);
    EXPECT_EQ(run({"explain", "--json"}), explanation);
    EXPECT_EQ(status()["wipes"], 1);
    EXPECT_NE(run({"timeline"}).find("[EAS] Failed setPasswordMinLength"), std::string::npos);
    EXPECT_NE(deskwatchProgram({"timeline", "--follow"}).errors.find("is not booted; boot it with"), std::string::npos);
}

TEST_F(CheckCommand, StoreWithoutItsTableIsFound) {
    boot();
    const auto store = policyDatabase(device().layout());
    std::filesystem::create_directories(store.parent_path());
    std::ofstream(store).close();

    EXPECT_EQ(kinds(), Kinds{"store"});
}

TEST_F(CheckCommand, CopyOfADeviceIsReadWithoutAWatch) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    const auto copy = device().layout().folder().parent_path() / "copy";
    std::filesystem::create_directory(copy);
    std::filesystem::copy(policyDatabase(device().layout()), copy / ".tesk.db");
    auto dump = status();
    dump["settings"]["minimum_length"] = 3;
    dump["administrator"] = false;
    std::ofstream(copy / "settings.json") << dump;
    device().off();

    EXPECT_EQ(kinds({"--copy", copy.string()}), (Kinds{"administrator", "lock", "encryption"}));
    std::ofstream(copy / "settings.json") << "{}";
    EXPECT_EQ(deskwatchProgram({"check", "--copy", copy.string()}).status, 1);
}

} // namespace
} // namespace deskwatch
