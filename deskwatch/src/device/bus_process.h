#ifndef DESKWATCH_BUS_PROCESS_H
#define DESKWATCH_BUS_PROCESS_H

#include <chrono>
#include <filesystem>
#include <optional>

#include "device/environment.h"
#include "device/process_handle.h"

namespace deskwatch {

/// The dbus-daemon of one device. It may outlive the process that started it; a record in the device's folder says
/// which process it is.
class BusProcess {
public:
    /// What a start needs.
    struct Start {
        std::filesystem::path configuration;
        std::filesystem::path log;
        Environment environment;
        bool endsWithStarter; // with the thread that starts it, however that ends
    };

    /// `record` is the file that says which process is the daemon. Nothing is started.
    explicit BusProcess(std::filesystem::path record) : record_(std::move(record)) {}

    /// Starts the daemon and returns when it accepts connections. Its errors, and those of all that it activates, are
    /// appended to the log. Throws std::runtime_error when there is no dbus-daemon or it does not come up.
    void start(const Start& start) const;

    /// A handle of the daemon; none when it does not run.
    std::optional<ProcessHandle> running() const;

    /// Ends the daemon and waits for it; removes the record. Throws std::runtime_error when it does not end in time.
    void stop(std::chrono::milliseconds atMost) const;

private:
    std::filesystem::path record_;
};

} // namespace deskwatch

#endif
