#include "records/log_line.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>

#include "device/file_descriptor.h"

namespace deskwatch {
namespace {

using namespace std::chrono;

/// From the lowest to the highest.
constexpr std::string_view levels = "VDIWEF";

constexpr std::string_view timeShape = "0000-00-00T00:00:00.000Z ";

bool isShapedLikeATime(std::string_view text) {
    return text.size() == timeShape.size() &&
           std::equal(text.begin(), text.end(), timeShape.begin(), [](char character, char shape) {
               return shape == '0' ? character >= '0' && character <= '9' : character == shape;
           });
}

std::optional<char> levelAt(std::string_view text) {
    const bool hasLevel = text.size() > 1 && text[1] == '/' && levels.find(text[0]) != std::string_view::npos;
    return hasLevel ? std::optional(text[0]) : std::nullopt;
}

system_clock::time_point timeOf(const std::string& text) {
    std::tm parts{};
    int milliseconds = 0;
    static_cast<void>(std::sscanf(text.c_str(), "%4d-%2d-%2dT%2d:%2d:%2d.%3d", &parts.tm_year, &parts.tm_mon,
                                  &parts.tm_mday, &parts.tm_hour, &parts.tm_min, &parts.tm_sec, &milliseconds));
    constexpr int firstYear = 1900;
    parts.tm_year -= firstYear;
    --parts.tm_mon;
    return system_clock::from_time_t(timegm(&parts)) + std::chrono::milliseconds(milliseconds);
}

} // namespace

std::string_view recordOf(std::string_view line) {
    if (isShapedLikeATime(line.substr(0, timeShape.size())) || levelAt(line)) {
        return line;
    }
    constexpr std::string_view timeEnd = "Z ";
    for (auto end = line.find(timeEnd, timeShape.size()); end != std::string_view::npos;
         end = line.find(timeEnd, end + 1)) {
        const auto record = line.substr(end + timeEnd.size() - timeShape.size());
        if (isShapedLikeATime(record.substr(0, timeShape.size())) && levelAt(record.substr(timeShape.size()))) {
            return record;
        }
    }
    return line;
}

std::optional<char> levelOf(std::string_view line) {
    auto record = recordOf(line);
    if (isShapedLikeATime(record.substr(0, timeShape.size()))) {
        record.remove_prefix(timeShape.size());
    }
    return levelAt(record);
}

LogLine logLine(std::string_view line) {
    LogLine result;
    result.level = levelOf(line);
    result.text = recordOf(line);
    if (const auto start = result.text.substr(0, timeShape.size()); isShapedLikeATime(start)) {
        result.time = timeOf(std::string(start));
        result.text.remove_prefix(timeShape.size());
    }
    return result;
}

std::string timeInUtc(system_clock::time_point time) {
    const auto sinceEpoch = duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
    const auto seconds = static_cast<std::time_t>(sinceEpoch / 1000);
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 40> text{};
    const auto length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    return std::string(text.data(), length) + "." + std::to_string(1000 + sinceEpoch % 1000).substr(1);
}

void addLogLine(const std::filesystem::path& log, const std::string& tag, const std::string& text) {
    const auto line =
        timeInUtc(system_clock::now()) + "Z I/" + tag + "(" + std::to_string(getpid()) + "): " + text + "\n";
    const FileDescriptor file(open(log.c_str(), O_WRONLY | O_APPEND | O_NONBLOCK | O_CLOEXEC)); // it may be a pipe
    static_cast<void>(!file.isOpen() || write(file.get(), line.data(), line.size()) < 0);
}

bool isAtLeast(char level, char lowest) {
    return levels.find(level) >= levels.find(lowest);
}

std::string endOfLog(const std::filesystem::path& log) {
    constexpr std::streamoff most = 262'144;
    std::error_code error;
    if (!std::filesystem::is_regular_file(log, error)) {
        return "";
    }
    std::ifstream stream(log, std::ios::binary | std::ios::ate);
    const std::streamoff size = stream.tellg();
    stream.seekg(std::max<std::streamoff>(size - most, 0));
    return {std::istreambuf_iterator<char>(stream), {}};
}

} // namespace deskwatch
