#include "commands.h"

#include "observer.h"
#include "watch_status.h"

#include <iostream>
#include <memory>

namespace deskwatch {

void addStatusCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("status", "Show accounts, settings, keys and launch requests of a watch");
    auto isJson = std::make_shared<bool>(false);
    command->add_flag("--json", *isJson, "One JSON object instead of tables");
    command->footer("Example:\n  deskwatch status --json");
    command->callback([&common, isJson] {
        const auto status = readStatus(WatchClient(chosenDevice(common), observerId));
        std::cout << (*isJson ? statusJson(status) : statusTables(status));
    });
}

} // namespace deskwatch
