#include <csignal>

#include "commands_fixture.h"
#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/bus_process.h"
#include "temporary_folder.h"

namespace deskwatch {
namespace {

TEST_F(Commands, StatusOfAFreshWatchStartsNothing) {
    boot();
    const auto watch = status();
    EXPECT_FALSE(watch["serviceRunning"]);
    EXPECT_TRUE(watch["accounts"].empty());
    EXPECT_TRUE(watch["launches"].empty());
    EXPECT_EQ(BusClient(device().busAddress()).daemon().ownedNames(), std::vector<std::string>{"ca.desrt.dconf"});
}

TEST_F(Commands, AnyRequestCanBeSent) {
    boot();
    run({"mail", "send", "chk_password_policy"});
    EXPECT_EQ(status()["launches"][0]["application"], ids::popup);
}

TEST_F(Commands, StateOfTheWatchIsAnOptionOfItsBoot) {
    boot({"--country", "KR", "--encrypted", "--tutorial", "--lock", "pin"});
    const auto keys = status()["keys"];
    EXPECT_EQ(keys["db/rgn/country_iso"], "KR");
    EXPECT_EQ(keys["db/ode/crypto_state"], "encrypted");
    EXPECT_EQ(keys["db/setting/lock_type"], 1);
    EXPECT_EQ(keys["memory/private/com.velmor.hearth/tutorial_is_in_progress"], 1);
}

TEST_F(Commands, FileThatIsNoJsonIsRefusedAndNothingOfTheOthersIsSent) {
    boot();
    const auto file = write("broken.json", "{\n  \"msgId\" \"x\"\n}\n");

    const auto outcome = deskwatchProgram({"mail", "policy", sample("hardened.json"), file.string()});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors.find("deskwatch: mail policy: " + file.string() + ":2:13: not valid JSON"), 0U)
        << outcome.errors;
    EXPECT_FALSE(status()["serviceRunning"]);
}

TEST_F(Commands, ServiceThatDoesNotComeUpIsReportedWithTheLog) {
    boot({"--service", "/bin/false"});
    const auto outcome = deskwatchProgram({"mail", "delete", "1"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors.find("deskwatch: mail delete: "), 0U) << outcome.errors;
    EXPECT_NE(outcome.errors.find(device().layout().log().string()), std::string::npos) << outcome.errors;
}

TEST_F(Commands, NewestWatchIsMeantUnlessAnotherIsNamed) {
    boot({"--country", "FR"});
    const TemporaryFolder other;
    run({"boot", other.path().string(), "--country", "KR"});

    EXPECT_EQ(status()["keys"]["db/rgn/country_iso"], "KR");
    EXPECT_EQ(Json::parse(run(
                  {"--device", device().layout().folder().string(), "status", "--json"}))["keys"]["db/rgn/country_iso"],
              "FR");
    setenv("DESKWATCH_DEVICE", device().layout().folder().c_str(), 1);
    EXPECT_EQ(status()["keys"]["db/rgn/country_iso"], "FR");
    unsetenv("DESKWATCH_DEVICE");

    EXPECT_EQ(run({"off"}), other.path().string() + " is off\n");
    EXPECT_EQ(status()["keys"]["db/rgn/country_iso"], "FR");
}

TEST_F(Commands, OffLeavesNoProcess) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    const auto processes = BusClient(device().busAddress()).daemon().applicationProcesses();
    ASSERT_GE(processes.size(), 4U) << "settings service, service, popup, settings";

    run({"off"});

    for (const auto& process : processes) {
        EXPECT_TRUE(process.waitForEnd(std::chrono::milliseconds::zero())) << process.pid();
    }
}

TEST_F(Commands, ApplicationsEndWhenTheBusIsKilled) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    const auto processes = BusClient(device().busAddress()).daemon().applicationProcesses();

    const auto bus = BusProcess(device().layout().busRecord()).running();
    bus->signal(SIGKILL);

    EXPECT_TRUE(bus->waitForEnd(timeout)) << "it may still be dying when its applications have ended";
    for (const auto& process : processes) {
        EXPECT_TRUE(process.waitForEnd(timeout)) << process.pid();
    }
    EXPECT_EQ(status()["booted"], false);
    EXPECT_EQ(run({"off"}), device().layout().folder().string() + " was already off\n");
}

} // namespace
} // namespace deskwatch
