#ifndef DESKWATCH_BUS_CONNECTION_H
#define DESKWATCH_BUS_CONNECTION_H

#include <string>

#include "c_owners.h"

namespace deskwatch {

/// A connection to the bus at that address which nobody else in this process shares. Throws std::runtime_error when
/// nobody answers there.
c::ObjectOwner<GDBusConnection> connectToBus(const std::string& address);

} // namespace deskwatch

#endif
