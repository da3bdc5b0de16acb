#include "commands/commands.h"
#include "refusal.h"

#include <iostream>
#include <stdexcept>
#include <string>

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

int report(const CLI::App& program, const std::exception& error, int status) {
    std::cerr << "deskwatch: " << commandName(program) << ": " << error.what() << '\n';
    return status;
}

int run(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, argv);
        return 0;
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : usage;
    } catch (const deskwatch::Refusal& error) {
        return report(program, error, refused);
    } catch (const std::exception& error) {
        return report(program, error, failed);
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        CLI::App program("A watch on the desk: boots it, plays its mail application, shows its state");
        deskwatch::CommonOptions options;
        deskwatch::addCommands(program, options);
        return run(program, argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "deskwatch: " << error.what() << '\n';
        return failed;
    }
}
