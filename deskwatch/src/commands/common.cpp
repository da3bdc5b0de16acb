#include "commands.h"

#include "registry.h"

#include <stdexcept>

namespace deskwatch {

Device chosenDevice(const CommonOptions& common) {
    if (!common.device.empty()) {
        return Device(common.device);
    }
    const auto newest = Registry::ofUser().newest();
    if (!newest) {
        throw std::runtime_error("no watch is booted (deskwatch boot)");
    }
    return Device(*newest);
}

} // namespace deskwatch
