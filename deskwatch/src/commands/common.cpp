#include <stdexcept>

#include "commands.h"
#include "device/registry.h"

namespace deskwatch {

void chooseLock(CLI::Option* option) {
    const std::map<std::string, Lock> locks{{"none", Lock::None}, {"pin", Lock::Pin}, {"password", Lock::Password}};
    option->type_name("none|pin|password");
    chooseByName(option, locks);
}

Device chosenDevice(const CommonOptions& common) {
    if (!common.device.empty()) {
        return Device(common.device);
    }
    const auto newest = Registry::ofUser().newest();
    if (!newest) {
        throw std::runtime_error("no watch is booted; boot one with: deskwatch boot");
    }
    return Device(*newest);
}

} // namespace deskwatch
