#include <iostream>
#include <stdexcept>
#include <string>

#include "actors/refusal.h"
#include "commands/commands.h"
#include "commands/output.h"

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

/// What a command wrote before it failed must not be lost either.
int report(const CLI::App& program, const std::exception& error, int status) {
    print(program, error);
    try {
        deskwatch::flushOutput();
    } catch (const std::runtime_error& lost) {
        print(program, lost);
        return failed;
    }
    return status;
}

/// Tells what was given in the place of a command and is none. The parser only misses the command.
int reportUsage(const CLI::App& program, const CLI::ParseError& error) {
    const auto unknown = program.remaining(true);
    if (dynamic_cast<const CLI::RequiredError*>(&error) == nullptr || unknown.empty()) {
        const int status = program.exit(error) == 0 ? 0 : usage;
        deskwatch::flushOutput(); // help is output, too
        return status;
    }
    const std::string outer = commandName(program);
    const std::string& word = unknown.front();
    std::cerr << "deskwatch: " << (outer.empty() ? "" : outer + ": ") << word
              << (word.rfind('-', 0) == 0 ? " is not an option" : " is not a command")
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
