#include "commands/commands.h"

#include <iostream>
#include <stdexcept>
#include <string>

namespace {

constexpr int failed = 1;
constexpr int usage = 2;

/// The command as the user typed it: its names from the outermost to the innermost.
std::string commandName(const CLI::App& program) {
    std::string name;
    for (const auto* command : program.get_subcommands()) {
        const std::string inner = commandName(*command);
        name += command->get_name() + (inner.empty() ? "" : " " + inner);
    }
    return name;
}

void addCommands(CLI::App& program, deskwatch::CommonOptions& options) {
    program.add_option("--device", options.device, "Folder of the watch (default: the newest booted one)")
        ->envname("DESKWATCH_DEVICE")
        ->type_name("DIR");
    program.require_subcommand(1);
    program.fallthrough();
    deskwatch::addBootCommand(program, options);
    deskwatch::addOffCommand(program, options);
    deskwatch::addMailCommand(program, options);
    deskwatch::addStatusCommand(program, options);
    deskwatch::addCompanionCommand(program);
    program.footer("Exit status: 0 done, 1 the command failed, 2 the arguments are wrong.\n"
                   "Example:\n  deskwatch boot /tmp/watch\n  deskwatch mail policy samples/hardened.json\n"
                   "  deskwatch status\n  deskwatch off");
}

int run(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, argv);
        return 0;
    } catch (const CLI::ParseError& error) {
        return program.exit(error) == 0 ? 0 : usage;
    } catch (const std::exception& error) {
        std::cerr << "deskwatch: " << commandName(program) << ": " << error.what() << '\n';
        return failed;
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        CLI::App program("A watch on the desk: boots it, plays its mail application, shows its state");
        deskwatch::CommonOptions options;
        addCommands(program, options);
        return run(program, argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "deskwatch: " << error.what() << '\n';
        return failed;
    }
}
