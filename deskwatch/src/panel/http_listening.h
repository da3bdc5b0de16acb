#ifndef DESKWATCH_HTTP_LISTENING_H
#define DESKWATCH_HTTP_LISTENING_H

#include <libsoup/soup.h>

#include "c_owners.h"

namespace deskwatch {

/// A server that listens on the loopback interface alone, on the port given or any free one for 0, which is stored; by
/// IPv6 as well where the machine has it. Throws std::runtime_error when the port cannot be had.
c::ObjectOwner<SoupServer> listenOnLoopback(unsigned& port);

} // namespace deskwatch

#endif
