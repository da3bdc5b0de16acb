#ifndef DESKWATCH_LOG_LINE_H
#define DESKWATCH_LOG_LINE_H

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace deskwatch {

/// A line of a watch's log, `2026-11-22T09:41:20.123Z W/TAG(  123): text`. What the bus writes, and programs that do
/// not use the platform's log, has neither time nor level.
struct LogLine {
    std::optional<std::chrono::system_clock::time_point> time;
    /// One of V, D, I, W, E and F; none for lines without.
    std::optional<char> level;
    /// The record without its time.
    std::string_view text;
};

/// The record in a line, which is all of it in most. The bus writes its prefix and its text apart, so that the record
/// of an application can come to stand between them. A line without a record is returned as it is.
std::string_view recordOf(std::string_view line);

/// The level of a line alone, which is quick: a log has many lines.
std::optional<char> levelOf(std::string_view line);

/// The parts of a line, which has to last as long as they do.
LogLine logLine(std::string_view line);

/// The tag of what the wearer does with the lock of the screen.
inline constexpr char lockScreenTag[] = "LOCK_SCREEN";

/// Adds a line with the time and the level of information. A log that cannot be written stays as it is, as when an
/// application writes to it.
void addLogLine(const std::filesystem::path& log, const std::string& tag, const std::string& text);

/// A time as the log has it, in UTC and without the Z.
std::string timeInUtc(std::chrono::system_clock::time_point time);

/// Whether a level is that high. Both are letters of LogLine.
bool isAtLeast(char level, char lowest);

/// The end of a log, which holds what the service decided last. Empty when the file is not a regular one: a pipe or a
/// device may never end.
std::string endOfLog(const std::filesystem::path& log);

} // namespace deskwatch

#endif
