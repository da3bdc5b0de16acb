#include <csignal>

#include "commands_fixture.h"
#include "device/bus_process.h"
#include "running_program.h"

namespace deskwatch {
namespace {

/// Looking at a watch, and what happens to it from outside.
class ObserverCommands : public Commands {};

TEST_F(ObserverCommands, EventReachesTheService) {
    boot();
    run({"mail", "check-password"});
    run({"event", "low-memory"});
    run({"event", "low-battery"});
    run({"event", "orientation"});
    const std::string log = run({"log"});
    for (const char* text : {"Low memory!", "Low battery!", "appDeviceOrientationChanged"}) {
        EXPECT_NE(log.find(text), std::string::npos) << text;
    }
}

TEST_F(ObserverCommands, EventNeedsNoService) {
    boot();
    run({"event", "low-memory"});
    EXPECT_FALSE(status()["serviceRunning"]);
    EXPECT_EQ(deskwatchProgram({"event", "rain"}).status, 2);
}

TEST_F(ObserverCommands, DiagnosticMethodStartsTheServiceAndTakesEffect) {
    boot();
    EXPECT_EQ(run({"bus", "ping"}), "0\n");
    EXPECT_EQ(run({"bus", "allowWifi", "0"}), "0\n");
    const auto watch = status();
    EXPECT_EQ(watch["accounts"][0]["account_id"], 999);
    EXPECT_EQ(watch["settings"]["wifi_state"], 0);
}

TEST_F(ObserverCommands, KilledServiceIsStartedByTheNextRequest) {
    boot();
    EXPECT_EQ(run({"kill"}), "the service did not run\n");
    run({"bus", "ping"});
    EXPECT_EQ(run({"kill"}), "the service was ended\n");
    EXPECT_FALSE(status()["serviceRunning"]);
    EXPECT_EQ(run({"bus", "ping"}), "0\n");
}

TEST_F(ObserverCommands, LogShowsTheWantedLevels) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    const std::string all = run({"log"});
    const std::string warnings = run({"log", "--level", "W"});
    EXPECT_NE(all.find("I/TESK_CONSUMER("), std::string::npos);
    EXPECT_NE(warnings.find("W/TESK_CONSUMER("), std::string::npos);
    EXPECT_EQ(warnings.find("I/TESK_CONSUMER("), std::string::npos);
    EXPECT_EQ(deskwatchProgram({"log", "--level", "X"}).status, 2);
}

TEST_F(ObserverCommands, FollowedLogGoesOn) {
    boot();
    run({"bus", "ping"});
    RunningProgram log({"log", "--follow", "--level", "W"});
    const auto isPong = [](const std::string& line) { return line.find("Pong") != std::string::npos; };
    EXPECT_TRUE(isPong(log.awaitLine(isPong)));

    run({"bus", "ping"});

    EXPECT_TRUE(isPong(log.awaitLine(isPong)));
    run({"off"});
    EXPECT_EQ(log.waitForEnd(), 0);
}

TEST_F(ObserverCommands, LogOfTheLastBootLeavesOutWhatWasBefore) {
    boot();
    run({"bus", "ping"});
    run({"off"});
    boot();
    EXPECT_NE(run({"log"}).find("Pong"), std::string::npos);
    EXPECT_EQ(run({"log", "--boot"}).find("Pong"), std::string::npos);
}

TEST_F(ObserverCommands, WatchThatIsOffShowsWhatItKeeps) {
    boot({"--country", "KR"});
    run({"mail", "policy", sample("hardened.json")});
    const auto booted = status();
    run({"off"});

    const auto off = Json::parse(run({"--device", device().layout().folder().string(), "status", "--json"}));

    EXPECT_EQ(off["booted"], false);
    EXPECT_EQ(off["accounts"], booted["accounts"]);
    EXPECT_EQ(off["settings"], booted["settings"]);
    EXPECT_EQ(off["keys"]["db/rgn/country_iso"], "KR");
    EXPECT_EQ(deskwatchProgram({"--device", "/tmp", "status"}).status, 1);
}

TEST_F(ObserverCommands, ListShowsEachWatchAndWhatBecameOfIt) {
    EXPECT_EQ(run({"ls"}), "");
    boot();
    run({"bus", "ping"});
    const TemporaryFolder other;
    run({"boot", other.path().string()});

    const auto both = Json::parse(run({"ls", "--json"}));
    const auto bus = BusProcess(Device(other.path()).layout().busRecord()).running();
    ASSERT_TRUE(bus.has_value());
    bus->signal(SIGKILL);
    ASSERT_TRUE(bus->waitForEnd(timeout));
    const auto table = run({"ls"});
    run({"--device", other.path().string(), "off"});
    const auto one = Json::parse(run({"ls", "--json"}));

    const auto first = device().layout().folder().string();
    EXPECT_EQ(both, Json::parse(R"([{"watch": ")" + first + R"(", "state": "booted", "serviceRunning": true,
                                     "newest": false}, {"watch": ")" +
                                other.path().string() + R"(", "state": "booted", "serviceRunning": false,
                                     "newest": true}])"));
    EXPECT_NE(table.find("ended suddenly", table.find(other.path().string())), std::string::npos) << table;
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(one[0]["watch"], first);
}

} // namespace
} // namespace deskwatch
