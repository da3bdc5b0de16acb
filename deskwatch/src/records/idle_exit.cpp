#include "records/idle_exit.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

namespace deskwatch {
namespace {

/// The service's own delay.
constexpr std::chrono::seconds delay{10};

/// What the platform's log writes after the tag.
std::string processMark(pid_t process) {
    std::array<char, 32> mark{};
    std::snprintf(mark.data(), mark.size(), "(%5d): ", static_cast<int>(process));
    return mark.data();
}

bool contains(std::string_view line, std::string_view part) {
    return line.find(part) != std::string_view::npos;
}

/// Takes the last line off a text that ends with a line.
std::string_view takeLastLine(std::string_view& text) {
    text.remove_suffix(!text.empty() && text.back() == '\n' ? 1 : 0);
    const auto start = text.rfind('\n') + 1; // no line break: npos + 1 is the start of the text
    const auto line = text.substr(start);
    text = text.substr(0, start);
    return line;
}

} // namespace

std::optional<IdleExit> idleExitOf(std::string_view log, pid_t service, std::chrono::seconds age) {
    const std::string mark = processMark(service);
    bool isLast = true;
    while (!log.empty()) {
        const auto line = takeLastLine(log);
        const bool isService = contains(line, mark);
        if (isService && contains(line, "STOP killer!")) {
            return std::nullopt;
        }
        if (isService && contains(line, "REFRESH killer!")) {
            return isLast ? IdleExit{std::max(delay - age, std::chrono::seconds(0)), true} : IdleExit{delay, false};
        }
        isLast = isLast && isService && contains(line, ">  Leave"); // the ends of the functions that decided it
    }
    return std::nullopt;
}

} // namespace deskwatch
