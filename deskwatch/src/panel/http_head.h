#ifndef DESKWATCH_HTTP_HEAD_H
#define DESKWATCH_HTTP_HEAD_H

#include <libsoup/soup.h>

#include <string>

#include "panel/gate.h"

namespace deskwatch {

/// The head of a request, for the gate.
RequestHead requestHead(SoupServerMessage* message);

/// Sets the headers that every answer has, whatever its status: nothing but this page's own files runs, nobody frames
/// it, nothing is stored, and each connection is closed, because this server leaks those that a client leaves idle.
void setSafeHeaders(SoupServerMessage* message);

/// A text of the library; empty for none.
inline std::string textOrNothing(const char* text) {
    return text != nullptr ? text : "";
}

} // namespace deskwatch

#endif
