#include <csignal>
#include <functional>

#include "commands/commands.h"
#include "commands_fixture.h"
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

class Output : public Commands {
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

std::string nameOf(const Words& call, const std::vector<std::string>& commands) {
    const auto two = call.size() > 1 ? call[0] + " " + call[1] : call[0];
    return std::find(commands.begin(), commands.end(), two) != commands.end() ? two : call[0];
}

TEST_F(Output, EveryCommandFailsWhenItsOutputCannotBeWritten) {
    setenv("DESKWATCH_PASSWORD", "any", 1);
    RunningProgram server({"exchange", "serve", sample("provision-hardened.xml")});
    const auto listening = server.nextLine();
    auto silent = allCommands();
    for (const auto& call : calls(listening.substr(listening.find("http")))) {
        silent.erase(std::remove(silent.begin(), silent.end(), nameOf(call, allCommands())), silent.end());
        const auto outcome = deskwatchProgram(call, "/dev/full");
        EXPECT_EQ(outcome.status, 1) << call[0];
        EXPECT_NE(outcome.errors.find("cannot write the output: No space left on device\n"), std::string::npos)
            << call[0] << ": " << outcome.errors;
    }
    EXPECT_EQ(silent, (Words{"popup ok", "popup sync-off", "popup dismiss", "tutorial done", "tutorial start", "launch",
                             "key set", "event", "exchange order", "record", "kill"}))
        << "each other command is called above";
    EXPECT_EQ(deskwatchProgram({"status", "--help"}, "/dev/full").status, 1);
}

TEST_F(Output, FollowerEndsWithItsReader) {
    boot();
    run({"bus", "ping"});
    for (const Words& follower : {Words{"log", "--follow"},
                                  {"status", "--follow"},
                                  {"key", "watch", "db/setting/lock_type"},
                                  {"timeline", "--follow"}}) {
        RunningProgram program(follower);
        program.nextLine();
        program.closeReader();
        EXPECT_EQ(program.waitForEnd(), -1) << follower[0]; // by a signal
    }
}

} // namespace
} // namespace deskwatch
