#ifndef TESK_WATCH_CLOCK_H
#define TESK_WATCH_CLOCK_H

/// How a process of a watch is told by which clock it waits. Shared by the host platform and by the tools that boot a
/// device.
namespace watch_clock {

/// Environment: "standing" for an application that waits by the clock of the watch, which passes when told to.
inline constexpr char variable[] = "TESK_CLOCK";
inline constexpr char standing[] = "standing";

} // namespace watch_clock

#endif
