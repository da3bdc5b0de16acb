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

TEST_F(SurvivalCommands, WaitForAHungServiceIsToldAndEndsInTime) {
    boot();
    const auto service = hungService();
    for (const auto& command :
         {std::vector<std::string>{"mail", "check-password"}, std::vector<std::string>{"lock", "pin"}}) {
        std::vector<std::string> arguments{"--timeout", "2"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        const auto outcome = deskwatchProgram(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.errors, "deskwatch: waiting for com.velmor.tesk-agent, which has not answered for a second\n"
                                  "deskwatch: " +
                                      command[0] + (command[0] == "mail" ? " " + command[1] : "") +
                                      ": com.velmor.tesk-agent has not answered for 2 seconds (--timeout); "
                                      "end what hangs with: deskwatch off --force\n");
    }
    service.signal(SIGCONT);
    run({"mail", "check-password"});
}

TEST_F(SurvivalCommands, ServiceThatDoesNotComeUpIsToldInTime) {
    const auto sleeper = write("sleeper", "#!/bin/sh\nexec sleep 1000\n");
    std::filesystem::permissions(sleeper, std::filesystem::perms::owner_all);
    const std::vector<std::pair<std::string, std::string>> services{
        {"/bin/true",
         "does not answer, see " + device().layout().log().string() + ": its program has ended without a word"},
        {sleeper, "has not answered for 2 seconds (--timeout); end what hangs with: deskwatch off --force"}};
    for (const auto& [service, told] : services) {
        boot({"--service", service});
        const auto outcome = deskwatchProgram({"--timeout", "2", "mail", "check-password"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.errors.find(": com.velmor.tesk-agent " + told + "\n"), std::string::npos) << outcome.errors;
        run({"off"});
    }
}

TEST_F(SurvivalCommands, BootThatIsCutShortLeavesNothing) {
    const auto bin = device().layout().folder().parent_path() / "bin";
    std::filesystem::create_directories(bin);
    const auto daemon = write("bin/dbus-daemon", "#!/bin/sh\nkill -TERM $PPID\nexec /usr/bin/dbus-daemon \"$@\"\n");
    std::filesystem::permissions(daemon, std::filesystem::perms::owner_all);
    setenv("PATH", (bin.string() + ":" + std::getenv("PATH")).c_str(), 1);
    for (const auto& command : {std::vector<std::string>{"boot"}, {"panel", "--no-browser"}}) {
        std::vector<std::string> arguments{"--device", device().layout().folder().string()};
        arguments.insert(arguments.end(), command.begin(), command.end());
        EXPECT_EQ(deskwatchProgram(arguments).status, -1); // by the signal
        EXPECT_TRUE(ProcessHandle::withVariable("TESK_DEVICE", arguments[1]).empty()) << command[0];
        EXPECT_EQ(run({"ls"}), "");
    }
}

TEST_F(SurvivalCommands, WatchThatCannotBeListedIsNotBooted) {
    setenv("XDG_STATE_HOME", "/proc/nowhere", 1);
    const auto folder = device().layout().folder().string();
    const auto outcome = deskwatchProgram({"boot", folder});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find("XDG_STATE_HOME"), std::string::npos) << outcome.errors;
    EXPECT_TRUE(ProcessHandle::withVariable("TESK_DEVICE", folder).empty());
}

TEST_F(SurvivalCommands, HungBusKeepsNobodyWaiting) {
    boot();
    const Device hung = bootAnother();
    BusProcess(hung.layout().busRecord()).running()->signal(SIGSTOP);
    const auto recording = device().layout().folder().parent_path() / "recording";
    for (const auto& [command, told] : std::vector<std::pair<std::vector<std::string>, std::string>>{
             {{"status"}, "the bus at " + hung.busAddress() + " has not answered for 1 seconds (--timeout); "},
             {{"record", recording},
              "the bus at " + hung.busAddress() + " has not answered for 1 seconds (--timeout); "},
             {{"off"}, " (dbus-daemon) still runs although it was asked to end; "}}) {
        std::vector<std::string> arguments{"--timeout", "1"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        const auto outcome = deskwatchProgram(arguments);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.errors.find(told), std::string::npos) << outcome.errors;
    }
    EXPECT_FALSE(std::filesystem::exists(recording));
    const auto list = Json::parse(deskwatchProgram({"ls", "--json"}).output);
    EXPECT_EQ(list[0]["state"], "booted");
    EXPECT_EQ(list[1]["state"], "does not respond");
    run({"off", "--force"});
}

TEST_F(SurvivalCommands, LogThatNeverEndsHoldsNobodyUp) {
    boot();
    std::filesystem::remove(device().layout().log());
    std::filesystem::create_symlink("/dev/full", device().layout().log());
    status();
    run({"check"});
    const auto sent = deskwatchProgram({"mail", "check-password"});
    EXPECT_NE(sent.errors.find("the log of this watch does not show"), std::string::npos) << sent.errors;
    for (const auto& command : {std::vector<std::string>{"log"}, {"log", "--boot"}}) {
        const auto outcome = deskwatchProgram(command);
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.errors.find("log is not a regular file"), std::string::npos) << outcome.errors;
    }
}

/// Whether a process can be in a name space of its own here, in which the limits are its own.
bool canLimitNotifiers() {
    return std::system("unshare --user --map-root-user "
                       "sh -c 'echo 0 >/proc/sys/user/max_inotify_instances' 2>/dev/null") == 0;
}

TEST_F(SurvivalCommands, FollowersDoWithoutANotifierOfTheSystem) {
    if (!canLimitNotifiers()) {
        GTEST_SKIP() << "no user name spaces here";
    }
    boot();
    const auto commands = write("commands", R"(
        echo 0 >/proc/sys/user/max_inotify_instances || exit 1
        "$DESKWATCH" log --follow | { read -r first; "$DESKWATCH" bus ping; grep -q Pong; } || exit 1
        "$DESKWATCH" kill
        "$DESKWATCH" status --follow | { read -r first; "$DESKWATCH" bus ping; grep -q 'the service runs'; }
    )");
    setenv("DESKWATCH", DESKWATCH_PROGRAM, 1);
    const c::ObjectOwner<GSubprocess> shell(g_subprocess_new(G_SUBPROCESS_FLAGS_STDOUT_SILENCE, nullptr, "unshare",
                                                             "--user", "--map-root-user", "sh", commands.c_str(),
                                                             nullptr));
    ASSERT_NE(shell, nullptr);
    EXPECT_NE(g_subprocess_wait_check(shell.get(), nullptr, nullptr), FALSE);
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

    const auto outcome = deskwatchProgram({"--timeout", "1", "off"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find("process " + std::to_string(service.pid()) + " (tesk-agent) still runs"),
              std::string::npos)
        << outcome.errors;
    EXPECT_NE(outcome.errors.find("deskwatch off --force"), std::string::npos) << outcome.errors;
    EXPECT_EQ(Json::parse(run({"ls", "--json"}))[0]["serviceRunning"], true);
    EXPECT_NE(run({"status"}).find("switched off, but the service still runs"), std::string::npos);
    run({"off", "--force"});
    EXPECT_TRUE(hasEnded(service));
}

} // namespace
} // namespace deskwatch
