#include "records/idle_exit.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "device/plain_text.h"
#include "records/log_line.h"

namespace deskwatch {
namespace {

using namespace std::chrono;

/// The service's own delay.
constexpr seconds delay{10};

/// By how much a busy service is late.
constexpr seconds grace{2};

/// What the platform's log writes after the tag.
std::string processMark(pid_t process) {
    std::array<char, 32> mark{};
    std::snprintf(mark.data(), mark.size(), "(%5d): ", static_cast<int>(process));
    return mark.data();
}

/// Takes the last line off a text that ends with a line.
std::string_view takeLastLine(std::string_view& text) {
    text.remove_suffix(!text.empty() && text.back() == '\n' ? 1 : 0);
    const auto start = text.rfind('\n') + 1; // no line break: npos + 1 is the start of the text
    const auto line = text.substr(start);
    text = text.substr(0, start);
    return line;
}

/// Somebody may have set the clock since the decision: then its age says nothing.
IdleExit exitAfter(const std::optional<system_clock::time_point>& decision, system_clock::time_point now) {
    const auto age = decision ? duration_cast<seconds>(now - *decision) : seconds(-1);
    const bool isCredible = age >= seconds(0) && age <= delay + grace;
    return isCredible ? IdleExit{std::max(delay - age, seconds(0)), true} : IdleExit{delay, false};
}

} // namespace

std::optional<IdleExit> idleExitOf(std::string_view log, pid_t service, system_clock::time_point now) {
    const std::string mark = processMark(service);
    while (!log.empty()) {
        const auto line = takeLastLine(log);
        const bool isService = contains(line, mark);
        if (isService && contains(line, "STOP killer!")) {
            return std::nullopt;
        }
        if (isService && contains(line, "REFRESH killer!")) {
            return exitAfter(logLine(line).time, now);
        }
    }
    return std::nullopt;
}

} // namespace deskwatch
