#include "actors/companion.h"

#include <stdexcept>

#include "commands.h"

namespace deskwatch {

void addCompanionCommand(CLI::App& program) {
    auto* command = program.add_subcommand("companion", "Stand in for an application of the watch");
    command->group(""); // not in the help: the bus starts it
    command->callback([] {
        if (runCompanion() != 0) {
            throw std::runtime_error("the application could not be run");
        }
    });
}

} // namespace deskwatch
