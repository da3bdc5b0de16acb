#ifndef DESKWATCH_TIMELINE_H
#define DESKWATCH_TIMELINE_H

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "device/device.h"
#include "recording/bus_trace.h"

namespace deskwatch {

/// Something that happened on a watch, for a reader.
struct TimelineEntry {
    /// When it was logged or seen, of a line without a time the line before it; none for what bears no time and
    /// happened before somebody looked.
    std::optional<std::chrono::system_clock::time_point> time;
    /// "request" and "answer": what the service was asked and answered; "key": a key that someone else set; "effect":
    /// what the service wrote; "launch", "message" and "wipe": what it sent and did; "process": a start or an end;
    /// "lock": what the wearer did with the lock; "event", "fault" and "call": what was done to the watch from outside;
    /// "log": a line of the log.
    std::string kind;
    /// The level of a log line; empty for others.
    std::string level;
    /// In words, on one line.
    std::string text;
    /// All of it, as in a recording, JSON; "null" for a log line.
    std::string detail = "null";
};

/// An event of the bus in words, without a time.
TimelineEntry timelineEntry(const TraceEvent& event);

/// A line of the log, with the time that it bears.
TimelineEntry timelineEntry(std::string_view logged);

/// A line for a reader, with the local time.
std::string timelineText(const TimelineEntry& entry);

/// A line for a program: {"time", "kind", "level", "text", "detail"}, with the time in UTC.
std::string timelineJson(const TimelineEntry& entry);

/// What a time line begins and ends with.
struct TimelineRange {
    /// Whether it begins with what the log and the mail application hold already.
    bool hasPast = true;
    /// Whether it goes on with what happens, until the watch is switched off.
    bool isFollowed = false;
};

/// Tells what happened on a watch; of one that is switched off, what its log says. What is followed comes in the order
/// of time, a tenth of a second late; SIGINT and SIGTERM end the process when it is told. Starts nothing and changes
/// nothing there. Throws std::runtime_error.
void tellTimeline(const Device& device, const TimelineRange& range,
                  const std::function<void(const TimelineEntry& entry)>& tell);

} // namespace deskwatch

#endif
