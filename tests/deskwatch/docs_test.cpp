#include <algorithm>

#include "c_owners.h"
#include "commands/commands.h"
#include "commands_fixture.h"

namespace deskwatch {
namespace {

/// How one calls each command that users see.
std::vector<std::string> commandsIn(const CLI::App& command, const std::string& path) {
    std::vector<std::string> paths;
    for (const auto* inner : command.get_subcommands([](const CLI::App*) { return true; })) {
        if (!inner->get_group().empty()) {
            const auto name = path.empty() ? inner->get_name() : path + " " + inner->get_name();
            paths.push_back(name);
            const auto more = commandsIn(*inner, name);
            paths.insert(paths.end(), more.begin(), more.end());
        }
    }
    return paths;
}

class Docs : public Commands {
protected:
    Docs() { addCommands(program_, common_); }

    std::vector<std::string> commands() const { return commandsIn(program_, ""); }

    /// What the completion proposes after these words.
    std::string proposed(const std::string& words) const {
        const auto script = write("completion.bash", run({"docs", "--completion"}));
        const auto file = write("ask.bash", "source " + script.string() + "\nCOMP_WORDS=(" + words +
                                                ")\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n_deskwatch\n"
                                                "echo \"${COMPREPLY[*]}\"\n");
        GError* error = nullptr;
        char* output = nullptr;
        const std::string line = "bash -eu " + file.string();
        EXPECT_TRUE(g_spawn_command_line_sync(line.c_str(), &output, nullptr, nullptr, &error))
            << c::takeMessage(error);
        const c::MemoryOwner<char> owner(output);
        return output != nullptr ? output : "";
    }

private:
    CLI::App program_{"", "deskwatch"};
    CommonOptions common_;
};

TEST_F(Docs, ManualPageHasEveryCommandAndNoneThatIsHidden) {
    const auto page = run({"docs", "--man"});
    for (auto command : commands()) {
        for (auto dash = command.find('-'); dash != std::string::npos; dash = command.find('-', dash + 2)) {
            command.insert(dash, "\\");
        }
        EXPECT_NE(page.find("\n.SS deskwatch " + command + "\n"), std::string::npos) << command;
    }
    EXPECT_EQ(page.find("companion"), std::string::npos);
}

TEST_F(Docs, ManualPageTellsWhatHoldsForEveryCommand) {
    const auto page = run({"docs", "--man"});
    for (const auto* heading : {"ENVIRONMENT", "FILES", "EXIT STATUS", "EXAMPLES"}) {
        EXPECT_NE(page.find(std::string("\n.SH ") + heading + "\n"), std::string::npos) << heading;
    }
    for (const auto* variable : {"TMPDIR", "DESKWATCH_PASSWORD", "SLURM_ARRAY_TASK_ID", "CI_NODE_INDEX"}) {
        EXPECT_NE(page.find(variable), std::string::npos) << variable;
    }
}

TEST_F(Docs, CompletionKnowsEveryCommand) {
    const auto script = run({"docs", "--completion"});
    for (const auto& command : commands()) {
        EXPECT_NE(script.find("    '" + command + "') words='"), std::string::npos) << command;
    }
    EXPECT_EQ(script.find("companion"), std::string::npos);
}

TEST_F(Docs, CompletionProposesCommandsOptionsAndValues) {
    struct Proposal {
        const char* words;
        const char* proposed;
    };
    for (const auto& [words, expected] : {
             Proposal{"wha", "whatif"},
             {"mail check-", "check-password check-encryption"},
             {"--device /tmp/watch status --f", "--follow"},
             {"--device status loc", "lock"},
             {"--device ''", ""},
             {"status ''", "--help --json --follow"},
             {"mail policy ''", ""},
             {"mail policy one.json --", "--help --raw"},
             {"lock ''", "none password pin"},
             {"boot --lock ''", "none password pin"},
             {"boot --lock = pi", "pin"},
             {"boot --lock =", "none password pin"},
             {"boot --country KR --", "--help --country --lock --encrypted --tutorial --service --mail"},
             {"boot --country K", "KE KG KH KI KM KN KP KR KW KY KZ"},
             {"log --level ''", "V D I W E F"},
             {"fault vconf_set_s", "vconf_set_str"},
             {"exchange order ''", ""},
             {"exchange order --cacert file http://a.example bob s", "status slow"},
             {"mail send chk_p", "chk_password_policy"},
             {"mail connect --protocol 16", "16.0 16.1"},
             {"key get db/r", "db/rgn/country_iso"},
         }) {
        EXPECT_EQ(proposed(std::string("deskwatch ") + words), std::string(expected) + "\n") << words;
    }
}

TEST_F(Docs, KindHasToBeNamed) {
    EXPECT_EQ(deskwatchProgram({"docs"}).status, 2);
    EXPECT_EQ(deskwatchProgram({"docs", "--man", "--completion"}).status, 2);
}

} // namespace
} // namespace deskwatch
