#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>

#include "commands.h"
#include "commands/completion.h"
#include "messages/message_schema.h"
#include "policy_files/policy_setting.h"
#include "text/output_file.h"

namespace deskwatch {
namespace {

/// Visits a command and those inside it that users see, with the words by which one calls it.
void visit(const CLI::App& command, const std::string& path,
           const std::function<void(const CLI::App& command, const std::string& path)>& visitor) {
    visitor(command, path);
    for (const auto* inner : command.get_subcommands([](const CLI::App*) { return true; })) {
        if (!inner->get_group().empty()) {
            visit(*inner, path.empty() ? inner->get_name() : path + " " + inner->get_name(), visitor);
        }
    }
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// Text as it stands: no character of it is a request or an escape of the formatter.
std::string roff(const std::string& text) {
    std::string escaped;
    for (const char character : text) {
        escaped += character == '\\' ? "\\e" : character == '-' ? "\\-" : std::string(1, character);
    }
    const bool isRequest = !escaped.empty() && (escaped[0] == '.' || escaped[0] == '\'');
    return isRequest ? "\\&" + escaped : escaped;
}

std::string optionUsage(const CLI::Option& option) {
    const bool takesValue = option.get_items_expected_max() > 0 && !option.get_type_name().empty();
    const std::string name = option.get_positional() ? option.get_name() : option.get_name(false, true);
    return name + (takesValue ? " " + option.get_type_name() : "");
}

void writeManCommand(const CLI::App& command, const std::string& path) {
    std::cout << ".SS deskwatch" << (path.empty() ? "" : " " + roff(path)) << '\n'
              << roff(command.get_description()) << ".\n";
    for (const auto* option : command.get_options()) {
        std::cout << ".TP\n.B " << roff(optionUsage(*option)) << '\n' << roff(option->get_description()) << '\n';
    }
    std::cout << ".PP\n.nf\n";
    for (const auto& line : linesOf(command.get_footer())) {
        std::cout << roff(line) << '\n';
    }
    std::cout << ".fi\n";
}

/// What holds for every command.
constexpr char commonSections[] = R"(.SH ENVIRONMENT
.TP
.B DESKWATCH_DEVICE
Folder of the watch that a command is about, as the option \-\-device.
.TP
.B DESKWATCH_TIMEOUT
Seconds that a command waits for an answer, as the option \-\-timeout.
.TP
.B XDG_STATE_HOME
Folder with the list of the user's watches and the default watch. Without it: ~/.local/state.
.TP
.B TMPDIR
Folder for the watches that whatif and replay boot for themselves. Without it: memory when there is room, else /tmp.
.TP
.B DESKWATCH_PASSWORD
Password for the servers of mail connect and mail refresh.
.TP
.B SLURM_ARRAY_TASK_ID\fR, \fBJOB_COMPLETION_INDEX\fR, \fBCI_NODE_INDEX
Which part of the recordings replay plays, as \-\-shard; with the variables SLURM_ARRAY_TASK_COUNT, _MIN and _STEP of Slurm,
JOB_COMPLETIONS of Kubernetes and CI_NODE_TOTAL of GitLab.
.TP
.B DLOG_LEVEL
Lowest level that the applications of a watch log from its boot on: V, D, I, W, E, F, or S for silence.
.SH FILES
.TP
.I DIR/log
What the service and the other applications of the watch in DIR log.
.TP
.I DIR/apps/com.velmor.tesk\-agent/data/dbspace/.tesk.db
The policy set of each account, an SQLite database.
.TP
.I DIR/config/dconf/user
The settings of the watch.
.TP
.I /usr/share/doc/tesk\-agent\-desk
Samples of messages, their schemas, and what they mean.
.SH EXIT STATUS
.TP
.B 0
The command did what it says.
.TP
.B 1
It could not, and standard error has the reason; or lint has remarks, or a recording differs in replay.
.TP
.B 2
The arguments are wrong.
.TP
.B 3
The watch refused what was asked of it, check has found something, or the policies of compare differ.
.SH EXAMPLES
.nf
deskwatch boot /tmp/watch
deskwatch mail policy /usr/share/doc/tesk\-agent\-desk/samples/hardened.json
deskwatch status
deskwatch popup ok
deskwatch lock password \-\-length 8
deskwatch off
.fi
)";

void writeMan(const CLI::App& program) {
    std::cout << ".TH DESKWATCH 1\n.ad l\n.SH NAME\ndeskwatch \\- " << roff(program.get_description())
              << "\n.SH SYNOPSIS\n.B deskwatch\n[\\-\\-device DIR] COMMAND [ARGUMENT...]\n.SH COMMANDS\n"
              << "In the examples samples/ stands for the folder /usr/share/doc/tesk\\-agent\\-desk/samples.\n";
    visit(program, "", writeManCommand);
    std::cout << commonSections;
}

void writeSchemas(const std::filesystem::path& folder) {
    for (const auto& file : schemaFiles()) {
        writeOutput(folder / file.name, file.text);
    }
}

} // namespace

void addDocsCommand(CLI::App& program) {
    auto* command =
        program.add_subcommand("docs", "Write the manual page, the completion, the schemas or the table of members");
    command->group(""); // not in the help: the build calls it
    auto isMan = std::make_shared<bool>(false);
    auto isCompletion = std::make_shared<bool>(false);
    auto* kind = command->add_option_group("kind");
    kind->add_flag("--man", *isMan, "The manual page");
    kind->add_flag("--completion", *isCompletion, "The completion for bash");
    auto schemas = std::make_shared<std::string>();
    auto isMembers = std::make_shared<bool>(false);
    kind->add_option("--schemas", *schemas, "The schemas of messages, into this folder");
    kind->add_flag("--members", *isMembers, "The members of a policy set and their names elsewhere");
    kind->require_option(1);
    command->callback([=, &program] {
        if (*isMan) {
            writeMan(program);
        }
        if (*isCompletion) {
            std::cout << completionScript(program);
        }
        if (!schemas->empty()) {
            writeSchemas(*schemas);
        }
        if (*isMembers) {
            std::cout << memberTable(parameterOf);
        }
    });
}

} // namespace deskwatch
