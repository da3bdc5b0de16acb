#include "journal.h"

#include <algorithm>
#include <cstdlib>

namespace fake {

namespace {

std::string textOf(const LogLine& line) {
    static constexpr char letters[] = "?DVDIWEF";
    const auto level = static_cast<std::size_t>(line.level);
    return std::string(1, level < sizeof letters - 1 ? letters[level] : '?') + ' ' + line.text;
}

bool beginsWithOneOf(const std::string& text, const Journal::Lines& beginnings) {
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [&](const std::string& beginning) { return text.compare(0, beginning.size(), beginning) == 0; });
}

} // namespace

LogLine parseLogLine(int level, const std::string& tag, const std::string& message) {
    static const std::string fileEnd = ": ";
    static const std::string placeEnd = ") >  ";
    const auto colon = message.find(fileEnd);
    const auto close = message.find(placeEnd);
    const auto open = close == std::string::npos ? close : message.rfind('(', close);
    if (colon == std::string::npos || open == std::string::npos || open < colon) {
        return {level, tag, "", "", 0, message};
    }
    const auto functionBegin = colon + fileEnd.size();
    return {level,
            tag,
            message.substr(0, colon),
            message.substr(functionBegin, open - functionBegin),
            std::atoi(message.substr(open + 1, close - open - 1).c_str()),
            message.substr(close + placeEnd.size())};
}

Journal::Lines Journal::all() const {
    Lines lines;
    for (const auto& entry : entries_) {
        const auto* call = std::get_if<std::string>(&entry);
        lines.push_back(call != nullptr ? *call : textOf(std::get<LogLine>(entry)));
    }
    return lines;
}

Journal::Lines Journal::calls(const Lines& beginnings) const {
    Lines lines;
    for (const auto& entry : entries_) {
        const auto* call = std::get_if<std::string>(&entry);
        if (call != nullptr && beginsWithOneOf(*call, beginnings)) {
            lines.push_back(*call);
        }
    }
    return lines;
}

Journal::Lines Journal::deviceSettings() const {
    return calls({"dpm_password_set_", "dpm_restriction_set_", "dpm_security_set_"});
}

Journal::Lines Journal::logs(int fromLevel) const {
    Lines lines;
    for (const auto& line : logLines()) {
        if (line.level >= fromLevel) {
            lines.push_back(textOf(line));
        }
    }
    return lines;
}

Journal::Lines Journal::logsOf(const std::string& function) const {
    Lines lines;
    for (const auto& line : logLines()) {
        if (line.function == function) {
            lines.push_back(textOf(line));
        }
    }
    return lines;
}

std::vector<LogLine> Journal::logLines() const {
    std::vector<LogLine> lines;
    for (const auto& entry : entries_) {
        if (const auto* line = std::get_if<LogLine>(&entry)) {
            lines.push_back(*line);
        }
    }
    return lines;
}

} // namespace fake
