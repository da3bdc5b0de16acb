#include <algorithm>

#include "commands_fixture.h"
#include "device/application_ids.h"
#include "running_program.h"

namespace deskwatch {
namespace {

class StatusFollow : public Commands {};

/// Waits for a status that the condition holds for.
Json awaitStatus(RunningProgram& program, const std::function<bool(const Json& status)>& condition) {
    return Json::parse(program.awaitLine([&](const std::string& line) { return condition(Json::parse(line)); }));
}

TEST_F(StatusFollow, ShowsEachChangeAsItComes) {
    boot();
    RunningProgram follower({"status", "--follow", "--json"});
    EXPECT_EQ(Json::parse(follower.nextLine())["serviceRunning"], false);

    run({"mail", "policy", sample("hardened.json")});
    awaitStatus(follower, [](const Json& status) {
        return status["accounts"].size() == 1 && status["settings"]["quality"] == 128 && status["launches"].size() == 2;
    });

    run({"popup", "ok"});
    awaitStatus(follower, [](const Json& status) {
        const auto& launches = status["launches"];
        return std::any_of(launches.begin(), launches.end(),
                           [](const Json& launch) { return launch["application"] == ids::lockSettings; });
    });

    run({"lock", "password"});
    awaitStatus(follower, [](const Json& status) { return status["keys"]["db/eas/password_policy_applied"] == 1; });
}

TEST_F(StatusFollow, MarksWhatHasChangedSinceItBegan) {
    boot();
    RunningProgram follower({"status", "--follow"});
    follower.awaitLine([](const std::string& line) { return line.find("Launch requests") == 0; });

    run({"lock", "pin"});

    const auto key = follower.awaitLine([](const std::string& line) {
        return line.find("db/setting/lock_type") != std::string::npos && line.find('*') != std::string::npos;
    });
    EXPECT_NE(key.find("1 PIN        * was 0 none"), std::string::npos) << key;
}

TEST_F(StatusFollow, EndsWithTheWatch) {
    boot();
    RunningProgram follower({"status", "--follow", "--json"});
    RunningProgram keys({"key", "watch", "db/setting/lock_type"});
    follower.nextLine();
    keys.nextLine();
    run({"off"});
    EXPECT_EQ(follower.waitForEnd(), 0);
    EXPECT_EQ(keys.waitForEnd(), 0);
}

TEST_F(StatusFollow, TellsThatTheServiceIsAboutToEnd) {
    boot();
    RunningProgram follower({"status", "--follow", "--json"});
    run({"mail", "policy", sample("exchange-default.json")});
    const auto ending = awaitStatus(follower, [](const Json& status) { return !status["idleExit"].is_null(); });
    EXPECT_TRUE(ending["serviceRunning"]);
    EXPECT_LE(ending["idleExit"]["seconds"], 10);
}

TEST_F(StatusFollow, AccountsBecomeOneMergedPolicy) {
    boot();
    run({"mail", "policy", sample("three-accounts.json")});
    const auto watch = status();
    EXPECT_EQ(watch["mergedPolicy"]["min_device_password_complex_characters"], 3);
    EXPECT_EQ(watch["mergedPolicy"]["max_device_password_failed_attempts"], 8);
    EXPECT_TRUE(watch["mergedPolicy"]["account_id"].is_null());
    EXPECT_NE(run({"status"}).find("merged"), std::string::npos);
}

} // namespace
} // namespace deskwatch
