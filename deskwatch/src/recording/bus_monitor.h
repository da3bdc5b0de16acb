#ifndef DESKWATCH_BUS_MONITOR_H
#define DESKWATCH_BUS_MONITOR_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "c_owners.h"
#include "device/bus_daemon.h"

namespace deskwatch {

/// Sees the messages that pass the bus of a watch from now on, in order. Says nothing itself. Each message wakes the
/// process's main context, so that a main loop may wait for messages beside other things.
class BusMonitor {
public:
    /// Sees what one of the bus's match rules describes; every message when there is none. Throws std::runtime_error
    /// when nobody answers at that address in time or the bus lets nobody watch.
    explicit BusMonitor(const std::string& address, std::vector<std::string> rules = {},
                        std::chrono::milliseconds patience = busPatience);
    ~BusMonitor();
    BusMonitor(const BusMonitor&) = delete;
    BusMonitor& operator=(const BusMonitor&) = delete;

    /// The next message, waiting that long for one; null when none came.
    c::ObjectOwner<GDBusMessage> next(std::chrono::milliseconds atMost) const;

    /// Hands over all that the bus has said up to now. Throws std::runtime_error when the bus does not answer.
    void takeUpToNow(const BusDaemon& daemon, const std::function<void(GDBusMessage* message)>& take);

    /// Whether the bus has gone; what it said before can still be read.
    bool isClosed() const { return g_dbus_connection_is_closed(connection_.get()) != FALSE; }

private:
    c::Owner<GAsyncQueue, g_async_queue_unref> messages_;
    c::ObjectOwner<GDBusConnection> connection_;
    guint filter_ = 0;
    unsigned markers_ = 0;
};

} // namespace deskwatch

#endif
