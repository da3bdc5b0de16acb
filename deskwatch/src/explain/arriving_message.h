#ifndef DESKWATCH_ARRIVING_MESSAGE_H
#define DESKWATCH_ARRIVING_MESSAGE_H

#include <string>

#include "explain/forecast.h"

namespace deskwatch {

/// Reads a message as the service would and tells what it would have it do. `source` names it for the reader. One
/// thread at a time.
Arrival readArrival(const std::string& source, const std::string& text);

} // namespace deskwatch

#endif
