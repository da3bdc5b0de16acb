#ifndef DESKWATCH_DEVICE_SESSION_H
#define DESKWATCH_DEVICE_SESSION_H

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "c_owners.h"
#include "device/bus_daemon.h"
#include "device/device.h"

namespace deskwatch {

/// Makes this process an application of a booted watch, and speaks to the others there. The platform's functions then
/// act as that application; since they remember where they are, a process can be on one watch only.
class DeviceSession {
public:
    /// Throws std::runtime_error when the watch is not booted.
    DeviceSession(const Device& device, const std::string& applicationId);

    const Device& device() const { return device_; }

    /// Answers which applications run. It must not outlive this object.
    BusDaemon daemon() const { return BusDaemon(connection_.get(), device_.patience()); }

    /// Waits until an application, started when it does not run, has handled everything that this process and the bus
    /// sent to it before. Returns the applications that have not answered its launch requests yet.
    /// After a second, five while it starts, it tells on standard error what it waits for. Throws std::runtime_error
    /// when the application does not come up, or ends meanwhile, and NoAnswer when the patience of the device is at an
    /// end.
    std::vector<std::string> settle(const std::string& id) const;

    /// Waits until the service, when it runs, has handled everything sent to it before, and until the applications that
    /// it launched have received their launch requests. Starts nothing. Throws std::runtime_error as settle does.
    void settleService() const;

    /// The connection of this process as an application.
    GDBusConnection* connection() const { return connection_.get(); }

    /// Makes the end of the watch a success of this process: for what goes on until then.
    void endWithWatch() const { onEnd_->status = EXIT_SUCCESS; }

private:
    /// What this process says and answers when the watch ends.
    struct OnEnd {
        std::string folder;
        int status = EXIT_FAILURE;
    };

    static void onClosed(GDBusConnection* connection, gboolean isVanished, GError* error, gpointer onEnd);

    std::vector<std::string> awaitSettled(const std::string& id) const;

    Device device_;
    std::shared_ptr<OnEnd> onEnd_; // shared with the connection, which may live longer
    c::ObjectOwner<GDBusConnection> connection_;
};

} // namespace deskwatch

#endif
