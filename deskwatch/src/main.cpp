#include <algorithm>
#include <iostream>
#include <stdexcept>
#include <string>

#include "actors/refusal.h"
#include "commands/commands.h"
#include "commands/output.h"
#include "device/plain_text.h"
#include "text/suggestion.h"
#include "text/value_text.h"

namespace {

constexpr int failed = 1;
constexpr int usage = 2;
constexpr int refused = 3;

/// The command as the user typed it: its names from the outermost to the innermost.
std::string commandName(const CLI::App& program) {
    std::string name;
    for (const auto* command : program.get_subcommands()) {
        const std::string inner = commandName(*command);
        name += command->get_name() + (inner.empty() ? "" : " " + inner);
    }
    return name;
}

void print(const CLI::App& program, const std::exception& error) {
    std::cerr << "deskwatch: " << commandName(program) << ": " << error.what() << '\n';
}

bool isOption(const std::string& word) {
    return deskwatch::startsWith(word, "-");
}

/// What a command wrote before it failed must not be lost either.
int report(const CLI::App& program, const std::exception& error, int status) {
    print(program, error);
    try {
        deskwatch::flushOutput();
    } catch (const deskwatch::OutputLost& lost) {
        print(program, lost);
        return failed;
    }
    return status;
}

std::vector<std::string> commandNamesOf(const CLI::App& command) {
    std::vector<std::string> names;
    for (const auto* inner : command.get_subcommands([](const CLI::App*) { return true; })) {
        if (!inner->get_group().empty()) {
            names.push_back(inner->get_name());
        }
    }
    return names;
}

const CLI::App& innermostCommand(const CLI::App& program) {
    const auto inner = program.get_subcommands();
    return inner.empty() ? program : innermostCommand(*inner.front());
}

/// The commands inside a command when they are few enough to be read in an error.
std::string theCommandsOf(const CLI::App& command) {
    constexpr std::size_t few = 8;
    const auto names = commandNamesOf(command);
    return names.empty() || names.size() > few ? "" : "; the commands are " + deskwatch::joined(names, ", ");
}

/// What the user probably meant by a word that is neither a command nor an option of the command, or else the commands
/// when they are few.
std::string meant(const CLI::App& program, const std::string& word) {
    const auto& command = innermostCommand(program);
    std::vector<std::string> names = commandNamesOf(command);
    for (const auto* place : {&command, &program}) {
        for (const auto* option : place->get_options()) {
            for (const auto& name : option->get_lnames()) {
                names.push_back("--" + name);
            }
        }
    }
    const auto near = deskwatch::didYouMean(word, {names.begin(), names.end()});
    return near.empty() && !isOption(word) ? theCommandsOf(command) : near;
}

/// What is wrong with the arguments. Of a word in the place of a command or an option the parser only says that the
/// command is missing, or names the values of the option, too.
std::string usageFault(const CLI::App& program, const CLI::ParseError& error) {
    auto unknown = program.remaining(true);
    const bool isTooMuch = dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr;
    const bool isMissing = dynamic_cast<const CLI::RequiredError*>(&error) != nullptr;
    if (isTooMuch) {
        std::stable_partition(unknown.begin(), unknown.end(), isOption);
    }
    if (!unknown.empty() && (isMissing || (isTooMuch && isOption(unknown.front())))) {
        const std::string& word = unknown.front();
        return word + (isOption(word) ? " is not an option" : " is not a command") + meant(program, word);
    }
    const auto& command = innermostCommand(program);
    const bool isCommandMissing = isMissing && command.get_require_subcommand_min() > 0;
    return isCommandMissing ? "a command is missing" + theCommandsOf(command) : error.what();
}

int reportUsage(const CLI::App& program, const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
        program.exit(error); // prints the help or the version
        deskwatch::flushOutput();
        return 0;
    }
    const std::string command = commandName(program);
    std::cerr << "deskwatch: " << (command.empty() ? "" : command + ": ") << usageFault(program, error)
              << "\nRun with --help for more information.\n";
    return usage;
}

int run(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, argv);
        deskwatch::flushOutput();
        return 0;
    } catch (const CLI::ParseError& error) {
        return reportUsage(program, error);
    } catch (const deskwatch::OutputLost& error) {
        print(program, error); // alone: it would be lost again
        return failed;
    } catch (const deskwatch::Refusal& error) {
        return report(program, error, refused);
    } catch (const std::exception& error) {
        return report(program, error, failed);
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        deskwatch::reserveOutput();
        CLI::App program("A watch on the desk: boots it, plays its mail application, shows its state");
        deskwatch::CommonOptions options;
        deskwatch::addCommands(program, options);
        return run(program, argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "deskwatch: " << error.what() << '\n';
        return failed;
    }
}
