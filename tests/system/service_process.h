#ifndef TESTS_SYSTEM_SERVICE_PROCESS_H
#define TESTS_SYSTEM_SERVICE_PROCESS_H

#include <gio/gio.h>

#include <optional>

#include "device/environment.h"
#include "test_device.h"

namespace system_test {

/// The service as a child of the test, which learns its exit status. Its errors go to the log of the device. A child
/// that still runs when this object goes is ended.
class ServiceProcess {
public:
    /// Starts it in the environment that the watch gives it.
    explicit ServiceProcess(const TestDevice& device);

    /// Starts it in another environment.
    ServiceProcess(const TestDevice& device, const deskwatch::Environment& environment);

    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    pid_t pid() const { return pid_; }

    /// Waits for the end; the exit status, or none when it goes on or was ended by a signal.
    std::optional<int> waitForExit() const;

private:
    c::ObjectOwner<GSubprocess> child_;
    pid_t pid_;
};

} // namespace system_test

#endif
