#ifndef DESKWATCH_WATCH_END_H
#define DESKWATCH_WATCH_END_H

#include <functional>

#include "device/device.h"

namespace deskwatch {

/// Runs what goes on until the watch is switched off. Whatever fails because the bus goes is that end, too, and no
/// failure; it is told on standard error. Other failures, and those of a watch that was off before, are thrown.
void untilWatchEnds(const Device& device, const std::function<void()>& follow);

} // namespace deskwatch

#endif
