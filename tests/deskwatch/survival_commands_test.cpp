#include <csignal>

#include "commands_fixture.h"
#include "device/application_ids.h"
#include "device/bus_process.h"

namespace deskwatch {
namespace {

/// Watches whose folders go and whose processes hang.
class SurvivalCommands : public Commands {
protected:
    /// Another watch, booted after the fixture's own.
    Device bootAnother() const {
        const auto folder = device().layout().folder().parent_path() / "another";
        run({"boot", folder.string()});
        return Device(folder);
    }

    ProcessHandle hungService() const {
        run({"mail", "check-password"});
        const auto pid = BusClient(device().busAddress()).daemon().processOf(ids::service);
        auto service = ProcessHandle::open(pid.value());
        service->signal(SIGSTOP);
        return std::move(*service);
    }

    static bool hasEnded(const ProcessHandle& process) { return process.waitForEnd(std::chrono::milliseconds::zero()); }
};

TEST_F(SurvivalCommands, RemovedWatchIsNotTheNewestAndGoesWithThePruning) {
    boot();
    const Device removed = bootAnother();
    const auto bus = BusProcess(removed.layout().busRecord()).running();
    std::filesystem::remove_all(removed.layout().folder());

    EXPECT_EQ(status()["watch"], device().layout().folder().string());
    auto list = Json::parse(run({"ls", "--json"}));
    ASSERT_EQ(list.size(), 2U);
    EXPECT_EQ(list[0]["newest"], true);
    EXPECT_EQ(list[1]["state"], "gone");

    list = Json::parse(run({"ls", "--prune", "--json"}));
    EXPECT_EQ(list.size(), 1U);
    EXPECT_TRUE(hasEnded(*bus));
}

TEST_F(SurvivalCommands, OffOfAllEndsEveryWatchThatIsListed) {
    boot();
    const Device another = bootAnother();
    run({"off", "--all"});
    EXPECT_FALSE(device().isBooted());
    EXPECT_FALSE(another.isBooted());
    EXPECT_EQ(run({"ls"}), "");
}

TEST_F(SurvivalCommands, HungServiceEndsByForce) {
    boot();
    const auto service = hungService();
    run({"off", "--force"});
    EXPECT_TRUE(hasEnded(service));
    EXPECT_FALSE(device().isBooted());
}

TEST_F(SurvivalCommands, OffDoesNotClaimSuccessWhileAnOldProcessLives) {
    boot();
    const auto service = hungService();
    BusProcess(device().layout().busRecord()).running()->signal(SIGKILL);

    const auto outcome = deskwatchProgram({"off"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find("process " + std::to_string(service.pid()) + " still runs"), std::string::npos)
        << outcome.errors;
    EXPECT_NE(outcome.errors.find("deskwatch off --force"), std::string::npos) << outcome.errors;
    run({"off", "--force"});
    EXPECT_TRUE(hasEnded(service));
}

} // namespace
} // namespace deskwatch
