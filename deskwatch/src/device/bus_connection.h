#ifndef DESKWATCH_BUS_CONNECTION_H
#define DESKWATCH_BUS_CONNECTION_H

#include <chrono>
#include <functional>
#include <string>

#include "c_owners.h"

namespace deskwatch {

/// How long to wait for a bus where nobody has said otherwise. A bus answers at once, unless the machine is very busy.
inline constexpr std::chrono::seconds busPatience{30};

/// Makes a connection; may be cancelled.
using Connect = std::function<GDBusConnection*(GCancellable* cancellable, GError** error)>;

/// Connects to the bus at that address by that function. Throws std::runtime_error when nobody answers there, and
/// NoAnswer when somebody does, and not in time.
c::ObjectOwner<GDBusConnection> connectInTime(const std::string& address, std::chrono::milliseconds patience,
                                              const Connect& connect);

/// A connection to the bus at that address which nobody else in this process shares. Throws as connectInTime does.
c::ObjectOwner<GDBusConnection> connectToBus(const std::string& address, std::chrono::milliseconds patience);

} // namespace deskwatch

#endif
