#ifndef DESKWATCH_LOG_LINES_H
#define DESKWATCH_LOG_LINES_H

#include <optional>
#include <string>
#include <string_view>

namespace deskwatch {

/// The lines of a watch's log, as they come: complete ones alone, and of those only what is wanted.
class LogLines {
public:
    /// With a level, one of the letters V, D, I, W, E and F, lines of lower levels are left out, and those that have
    /// none: what the bus writes, and programs that do not use the platform's log.
    explicit LogLines(std::optional<char> lowest) : lowest_(lowest) {}

    /// Takes more of the log; returns the wanted lines that are complete now.
    std::string add(std::string_view text);

private:
    bool isWanted(std::string_view line) const;

    std::optional<char> lowest_;
    std::string unfinished_;
};

} // namespace deskwatch

#endif
