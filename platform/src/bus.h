#ifndef PLATFORM_BUS_H
#define PLATFORM_BUS_H

#include <optional>
#include <set>
#include <string>

#include "c_owners.h"

namespace host {

/// For a proxy that only makes calls: it loads nothing, listens to nothing, and starts nobody when it is made.
inline constexpr auto callsAlone =
    static_cast<GDBusProxyFlags>(G_DBUS_PROXY_FLAGS_DO_NOT_LOAD_PROPERTIES | G_DBUS_PROXY_FLAGS_DO_NOT_CONNECT_SIGNALS |
                                 G_DBUS_PROXY_FLAGS_DO_NOT_AUTO_START_AT_CONSTRUCTION);

/// The process's connection to the device's message bus, and what it asks the bus daemon. The daemon answers at once,
/// whatever other applications are doing, so these questions cannot make applications wait for each other.
///
/// An application cannot work without its bus. When the connection is lost, the process says so and ends with a failure
/// status, whether the main loop or a question to the daemon finds out first.
class Bus {
public:
    /// The process's one connection, made on first use. Throws HostError when the bus cannot be reached.
    static Bus& get();

    Bus(const Bus&) = delete;
    Bus& operator=(const Bus&) = delete;
    ~Bus();

    /// The connection; it lives as long as the process.
    GDBusConnection* connection() const { return connection_.get(); }

    /// Takes a name. False when another process has it.
    bool requestName(const std::string& name);

    void releaseName(const std::string& name);
    void releaseAllNames();

    /// Whether a process owns the name now; also false for what cannot be a name.
    bool hasOwner(const std::string& name);

    /// The unique name of the process that owns a name now.
    std::optional<std::string> ownerOf(const std::string& name);

    /// Whether the daemon could start a process for the name.
    bool isActivatable(const std::string& name);

    /// Subscribes to the signals that a match rule describes, until removeMatch() has been called as often. Returns at
    /// once; the daemon knows it before it answers or passes on anything that is sent later.
    void addMatch(const std::string& rule);
    void removeMatch(const std::string& rule);

    /// Returns when the name's process, which the daemon was asked to start, owns the name or failed to. For a process
    /// that is about to end, to which a lost connection no longer matters.
    void awaitStart(const std::string& name) noexcept;

    /// Returns when everything that was sent is on its way, so that the process may end.
    void flush();

    /// Whether this bus's daemon started the process.
    bool startedThisProcess() const;

private:
    Bus();

    /// Asks the daemon. Null when it answers no value of the type within the timeout, in milliseconds. With a place for
    /// the error, a lost connection ends the process.
    c::VariantOwner ask(const char* method, GVariant* arguments, const char* answerType, int timeout,
                        GError** error) const;

    /// Asks the daemon for what must succeed. Throws HostError, which says that it cannot do `what`.
    c::VariantOwner demand(const char* method, GVariant* arguments, const char* answerType,
                           const std::string& what) const;

    /// Tells the daemon of a match rule; it gives no answer.
    void tell(const char* method, const std::string& rule) const;

    /// Ends the process when the error means that the connection is gone.
    void check(const GError* error) const;

    c::ObjectOwner<GDBusConnection> connection_;
    std::set<std::string> names_;
};

} // namespace host

#endif
