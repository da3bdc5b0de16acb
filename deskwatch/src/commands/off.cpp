#include <chrono>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "commands.h"
#include "device/registry.h"

namespace deskwatch {
namespace {

struct OffOptions {
    bool isForced = false;
    bool isForAll = false;
};

void switchOff(const Device& device, bool isForced) {
    const auto folder = device.layout().folder();
    const bool wasForced = isForced && device.kill();
    const bool wasBooted = (device.exists() || !wasForced) && device.off();
    Registry::ofUser().remove(folder);
    std::cout << folder.string() << (wasBooted || wasForced ? " is off\n" : " was already off\n");
}

/// A watch that cannot be switched off does not keep the others from it.
void switchAllOff(const CommonOptions& common, bool isForced) {
    std::size_t failures = 0;
    for (const auto& folder : Registry::ofUser().folders()) {
        try {
            switchOff(Device(folder, std::chrono::seconds(common.timeout)), isForced);
        } catch (const std::runtime_error& error) {
            std::cerr << "deskwatch: off: " << error.what() << '\n';
            ++failures;
        }
    }
    if (failures != 0) {
        throw std::runtime_error(std::to_string(failures) + " of the watches could not be switched off");
    }
}

} // namespace

void addOffCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("off", "Switch a watch off; its folder stays");
    auto options = std::make_shared<OffOptions>();
    command->add_flag("--force", options->isForced, "Kill its processes, also those that hang");
    command->add_flag("--all", options->isForAll, "Switch off every watch that ls lists");
    command->footer("Example:\n  deskwatch --device /tmp/watch off");
    command->callback([&common, options] {
        if (options->isForAll) {
            switchAllOff(common, options->isForced);
        } else {
            switchOff(chosenDevice(common), options->isForced);
        }
    });
}

} // namespace deskwatch
