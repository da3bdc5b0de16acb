#ifndef TESTS_SYSTEM_SERVICE_PROCESS_H
#define TESTS_SYSTEM_SERVICE_PROCESS_H

#include "environment.h"
#include "watch.h"

#include <gio/gio.h>

#include <optional>

namespace system_test {

/// The service as a child of the test, which learns its exit status. Its errors go to the log of the watch. A child
/// that still runs when this object goes is ended.
class ServiceProcess {
public:
    /// Starts it in the environment that the watch gives it.
    explicit ServiceProcess(const Watch& watch);

    /// Starts it in another environment.
    ServiceProcess(const Watch& watch, const deskwatch::Environment& environment);

    ~ServiceProcess();
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    pid_t pid() const { return pid_; }

    /// Waits for the end; the exit status, or none when it goes on or was ended by a signal.
    std::optional<int> waitForExit() const;

private:
    deskwatch::ObjectOwner<GSubprocess> child_;
    pid_t pid_;
};

} // namespace system_test

#endif
