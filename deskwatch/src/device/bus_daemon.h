#ifndef DESKWATCH_BUS_DAEMON_H
#define DESKWATCH_BUS_DAEMON_H

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "c_owners.h"
#include "device/bus_connection.h"
#include "device/process_handle.h"

namespace deskwatch {

/// Answers who is on the bus of a device. A name is a well-known one, such as an application's id, or that of a
/// connection. Every question throws std::runtime_error when the daemon does not answer.
class BusDaemon {
public:
    /// Asks over that connection, which must outlive this object, and waits that long for each answer.
    explicit BusDaemon(GDBusConnection* connection, std::chrono::milliseconds patience = busPatience)
        : connection_(connection), patience_(patience) {}

    /// The well-known names that some process owns now, the daemon's own name left out.
    std::vector<std::string> ownedNames() const;

    /// Whether a process owns the name: whether an application runs.
    bool isOwned(const std::string& name) const;

    /// The connection that owns the name; none when nobody does.
    std::optional<std::string> ownerOf(const std::string& name) const;

    /// The process that owns the name; none when nobody does.
    std::optional<pid_t> processOf(const std::string& name) const;

    /// The processes of all owned names, this one left out.
    std::vector<ProcessHandle> applicationProcesses() const;

    /// Waits until the name has an owner. False when it has none after that time.
    bool awaitOwner(const std::string& name, std::chrono::milliseconds atMost) const;

private:
    c::VariantOwner ask(const char* method, const std::string& name, const char* answerType) const;

    c::VariantOwner call(const char* method, GVariant* arguments, const char* answerType, GError** error) const;

    GDBusConnection* connection_;
    std::chrono::milliseconds patience_;
};

} // namespace deskwatch

#endif
