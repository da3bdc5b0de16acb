#include <iostream>

#include "commands.h"
#include "device/registry.h"

namespace deskwatch {

void addOffCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("off", "Switch a watch off; its folder stays");
    command->footer("Example:\n  deskwatch --device /tmp/watch off");
    command->callback([&common] {
        const Device device = chosenDevice(common);
        const bool wasBooted = device.off();
        Registry::ofUser().remove(device.layout().folder());
        std::cout << device.layout().folder().string() << (wasBooted ? " is off\n" : " was already off\n");
    });
}

} // namespace deskwatch
