#include "device/watch_end.h"

#include <iostream>
#include <stdexcept>

#include "device/bus_client.h"
#include "device/patience.h"

namespace deskwatch {
namespace {

/// A bus that ends closes its door before it lets go of who is in.
bool isBusThere(const Device& device) {
    try {
        const BusClient bus(device.busAddress(), device.patience());
        return true;
    } catch (const NoAnswer&) {
        return true;
    } catch (const std::runtime_error&) {
        return false;
    }
}

} // namespace

void untilWatchEnds(const Device& device, const std::function<void()>& follow) {
    const bool wasBooted = device.isBooted();
    try {
        follow();
    } catch (const NoAnswer&) {
        throw;
    } catch (const std::runtime_error&) {
        if (!wasBooted || isBusThere(device)) {
            throw;
        }
        std::cerr << "deskwatch: " << device.layout().folder().string() << " has been switched off\n";
    }
}

} // namespace deskwatch
