#include "commands/observed_watch.h"

#include <stdexcept>

#include "device/application_ids.h"
#include "session/observer.h"

namespace deskwatch {

ObservedWatch::ObservedWatch(const Device& device) : device_(device) {
    if (!device.exists()) {
        throw std::runtime_error(files().folder().string() + " is not a watch folder");
    }
    if (device.isBooted()) {
        session_.emplace(device, observerId);
    } else {
        copy_.emplace(device);
    }
}

DeviceStatus ObservedWatch::status() const {
    auto status = readStatus(session());
    if (copy_) {
        status.folder = files().folder().string();
        status.isBooted = false;
        status.isServiceRunning = device_.hasProgramOf(ids::service); // one that has not ended with its watch
        status.wipes = countWipes(files());
    }
    return status;
}

} // namespace deskwatch
