#include <csignal>
#include <functional>
#include <optional>

#include "commands/commands.h"
#include "commands_fixture.h"
#include "device/application_ids.h"
#include "device/bus_process.h"
#include "running_program.h"

namespace deskwatch {
namespace {

using Words = std::vector<std::string>;

/// Every command that users see, as one types it.
std::vector<std::string> allCommands() {
    CLI::App program;
    CommonOptions common;
    addCommands(program, common);
    std::vector<std::string> names;
    const std::function<void(const std::string&, const CLI::App&)> visit = [&](const std::string& outer,
                                                                               const CLI::App& command) {
        const auto inner = command.get_subcommands([](const CLI::App* entry) { return !entry->get_group().empty(); });
        for (const auto* entry : inner) {
            visit(outer + (outer.empty() ? "" : " ") + entry->get_name(), *entry);
        }
        if (inner.empty()) {
            names.push_back(outer);
        }
    };
    visit("", program);
    return names;
}

/// What holds for every command.
class EveryCommand : public Commands {
protected:
    /// A call of every command that writes something, in an order in which each has something to write.
    std::vector<Words> calls(const std::string& server) const {
        const auto folder = device().layout().folder().string();
        return {{"boot", folder},
                {"mail", "policy", sample("hardened.json")},
                {"mail", "accounts", sample("account-info.json")},
                {"mail", "init", sample("init-response.json")},
                {"mail", "check-password"},
                {"mail", "send", "chk_password_policy"},
                {"mail", "wipe"},
                {"lock", "password"},
                {"encrypt"},
                {"mail", "check-encryption"},
                {"mail", "delete", "2"},
                {"status"},
                {"explain"},
                {"check"},
                {"whatif", sample("strictest.json")},
                {"log"},
                {"timeline"},
                {"key", "get", "db/setting/lock_type"},
                {"key", "watch", "db/setting/lock_type"},
                {"bus", "ping"},
                {"import", sample("provision-hardened.xml")},
                {"compare", sample("hardened.json"), sample("hardened.json")},
                {"lint", std::string(SOURCE_FOLDER) + "/tests/schema/odd/misspelt_member.json"},
                {"fault"},
                {"panel", "--no-browser"},
                {"ls"},
                {"replay", std::string(SOURCE_FOLDER) + "/tests/recordings/wearer-story.jsonl"},
                {"mail", "connect", server, "--user", "bob", "--account", "7", "--no-wait"},
                {"mail", "refresh", "7", "--no-wait"},
                {"mail", "servers"},
                {"mail", "disconnect", "7"},
                {"exchange", "show", server},
                {"exchange", "serve", sample("provision-hardened.xml")},
                {"off"}};
    }
};

std::string nameOf(const Words& call) {
    static const auto commands = allCommands();
    const auto two = call.size() > 1 ? call[0] + " " + call[1] : call[0];
    return std::find(commands.begin(), commands.end(), two) != commands.end() ? two : call[0];
}

bool isOneOf(const std::string& name, const Words& names) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// A call of every command that writes nothing.
std::vector<Words> silentCalls(const std::string& server) {
    return {{"popup", "ok"},
            {"popup", "sync-off"},
            {"popup", "dismiss"},
            {"tutorial", "done"},
            {"tutorial", "start"},
            {"launch", "com.velmor.tesk-agent"},
            {"key", "set", "db/example", "1"},
            {"event", "low-memory"},
            {"exchange", "order", server, "bob", "wipe"},
            {"record", "/nowhere/story.jsonl"},
            {"kill"}};
}

/// The commands that end when somebody ends them.
const Words lasting{"key watch", "panel", "exchange serve"};

TEST_F(EveryCommand, IsCalledHere) {
    auto unknown = allCommands();
    auto all = calls("");
    const auto silent = silentCalls("");
    all.insert(all.end(), silent.begin(), silent.end());
    for (const auto& call : all) {
        unknown.erase(std::remove(unknown.begin(), unknown.end(), nameOf(call)), unknown.end());
    }
    EXPECT_EQ(unknown, Words{});
}

/// A server for the commands that speak with one.
class EveryCommandOnline : public EveryCommand {
protected:
    EveryCommandOnline() {
        setenv("DESKWATCH_PASSWORD", "any", 1);
        server_.emplace(Words{"exchange", "serve", sample("provision-hardened.xml")});
        const auto listening = server_->nextLine();
        address_ = listening.substr(listening.find("http"));
    }

    std::vector<Words> calls() const { return EveryCommand::calls(address_); }

    std::vector<Words> callsOfAll() const {
        auto all = calls();
        const auto silent = silentCalls(address_);
        all.insert(all.end() - 1, silent.begin(), silent.end()); // `off` is the last
        return all;
    }

private:
    std::optional<RunningProgram> server_;
    std::string address_;
};

TEST_F(EveryCommandOnline, FailsWhenItsOutputCannotBeWritten) {
    for (const auto& call : calls()) {
        const auto outcome = deskwatchProgram(call, "/dev/full");
        EXPECT_EQ(outcome.status, 1) << call[0];
        const std::string reason = "cannot write the output: No space left on device\n";
        EXPECT_NE(outcome.errors.find(reason), std::string::npos) << call[0] << ": " << outcome.errors;
        EXPECT_EQ(outcome.errors.find(reason), outcome.errors.rfind(reason)) << call[0] << ": " << outcome.errors;
    }
    EXPECT_EQ(deskwatchProgram({"status", "--help"}, "/dev/full").status, 1);
}

TEST_F(EveryCommandOnline, EndsWithItsReader) {
    for (const auto& call : calls()) {
        const auto outcome = deskwatchWithoutReader(call);
        EXPECT_EQ(outcome.status, -1) << nameOf(call) << ": " << outcome.errors; // by a signal
    }
}

TEST_F(EveryCommandOnline, TakesAnUnknownOptionForAMistakeOfTheCaller) {
    for (auto call : callsOfAll()) {
        call.emplace_back("--nonsense");
        const auto outcome = deskwatchProgram(call);
        EXPECT_EQ(outcome.status, 2) << nameOf(call);
        EXPECT_NE(outcome.errors.find("--nonsense"), std::string::npos) << nameOf(call) << ": " << outcome.errors;
    }
}

TEST_F(EveryCommandOnline, NamesTheWatchThatHasDied) {
    boot();
    const auto bus = BusProcess(device().layout().busRecord()).running();
    bus->signal(SIGKILL);
    ASSERT_TRUE(bus->waitForEnd(timeout));
    // what needs no watch that runs, and the panel, which boots one
    const Words others{"boot",           "ls",      "off",          "status",        "log",
                       "lint",           "import",  "replay",       "exchange show", "exchange serve",
                       "exchange order", "panel",   "mail servers", "compare",       "explain",
                       "check",          "timeline"};
    for (const auto& call : callsOfAll()) {
        if (!isOneOf(nameOf(call), others)) {
            const auto outcome = deskwatchProgram(call);
            EXPECT_EQ(outcome.status, 1) << nameOf(call);
            EXPECT_NE(outcome.errors.find(device().layout().folder().string() + " is not booted; boot it with: "),
                      std::string::npos)
                << nameOf(call) << ": " << outcome.errors;
        }
    }
}

TEST_F(EveryCommandOnline, ComesBackFromAServiceThatHangs) {
    boot();
    run({"bus", "ping"});
    ProcessHandle::open(BusClient(device().busAddress()).daemon().processOf(ids::service).value())->signal(SIGSTOP);
    Words unanswered;
    for (auto call : callsOfAll()) {
        if (const auto name = nameOf(call); !isOneOf(name, lasting)) {
            call.insert(call.begin(), {"--timeout", "1"});
            const auto outcome = deskwatchProgram(call);
            if (outcome.errors.find("has not answered for 1 seconds") != std::string::npos) {
                EXPECT_EQ(outcome.status, 1) << name;
                unanswered.push_back(name);
            }
            EXPECT_NE(outcome.status, -1) << name;
        }
    }
    EXPECT_EQ(unanswered, (Words{"mail policy",
                                 "mail accounts",
                                 "mail init",
                                 "mail check-password",
                                 "mail send",
                                 "mail wipe",
                                 "lock",
                                 "encrypt",
                                 "mail check-encryption",
                                 "mail delete",
                                 "bus",
                                 "mail connect",
                                 "mail refresh",
                                 "mail disconnect",
                                 "tutorial done",
                                 "tutorial start",
                                 "launch",
                                 "key set",
                                 "event",
                                 "record"}));
}

TEST_F(EveryCommand, FollowerEndsWithItsReader) {
    boot();
    run({"bus", "ping"});
    for (const Words& follower : {Words{"log", "--follow"},
                                  {"status", "--follow"},
                                  {"key", "watch", "db/setting/lock_type"},
                                  {"record", "-"},
                                  {"timeline", "--follow"}}) {
        RunningProgram program(follower);
        program.nextLine();
        program.closeReader();
        EXPECT_EQ(program.waitForEnd(), -1) << follower[0]; // by a signal
    }
}

TEST_F(EveryCommand, FollowerThatIsReadSlowlyEndsWithTheWatch) {
    for (const auto* const follower : {"log", "timeline"}) {
        boot();
        std::ofstream log(device().layout().log(), std::ios::app);
        for (int line = 0; line < 5000; ++line) {
            log << "more than what a pipe holds before it is read, line " << line << std::endl;
        }
        RunningProgram program({follower, "--follow"});
        program.nextLine();
        run({"off"});
        EXPECT_EQ(program.waitForEnd(), 0) << follower;
    }
}

} // namespace
} // namespace deskwatch
