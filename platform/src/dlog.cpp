#include "dlog.h"

#include <strings.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "c_owners.h"
#include "guard.h"

namespace {

struct Level {
    int priority;
    const char* letter;
    const char* name;
    const char* colour;
};

constexpr std::array<Level, 7> levels{{
    {DLOG_VERBOSE, "V", "verbose", "\x1b[90m"},
    {DLOG_DEBUG, "D", "debug", "\x1b[36m"},
    {DLOG_INFO, "I", "info", "\x1b[32m"},
    {DLOG_WARN, "W", "warn", "\x1b[33m"},
    {DLOG_ERROR, "E", "error", "\x1b[31m"},
    {DLOG_FATAL, "F", "fatal", "\x1b[1;31m"},
    {DLOG_SILENT, "S", "silent", ""},
}};

const Level* findLevel(int priority) {
    for (const Level& level : levels) {
        if (level.priority == priority) {
            return &level;
        }
    }
    return nullptr;
}

int lowestShown() {
    const char* wanted = std::getenv("DLOG_LEVEL");
    if (wanted == nullptr || *wanted == '\0') {
        return DLOG_INFO;
    }
    for (const Level& level : levels) {
        if (strcasecmp(wanted, level.letter) == 0 || strcasecmp(wanted, level.name) == 0 ||
            wanted == std::to_string(level.priority)) {
            return level.priority;
        }
    }
    host::report(std::string("DLOG_LEVEL=") + wanted + " is not a log level (V D I W E F S); showing I and higher");
    return DLOG_INFO;
}

bool isTimeWanted() {
    const char* format = std::getenv("DLOG_FORMAT");
    return format != nullptr && std::string(format) == "time";
}

// Read once: what is shown does not change while the process runs.
struct Output {
    int lowest = host::guarded<int>("DLOG_LEVEL", DLOG_INFO, lowestShown);
    bool timed = host::guarded("DLOG_FORMAT", false, isTimeWanted);
    bool coloured = isatty(STDERR_FILENO) == 1;
};

const Output& output() {
    static const Output instance;
    return instance;
}

// One write, so that the lines of several processes do not mix.
int writeLine(const std::string& line) {
    ssize_t written = 0;
    do {
        written = write(STDERR_FILENO, line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    return written < 0 ? -errno : static_cast<int>(written);
}

// In UTC, so that lines compare across time zones.
std::string timeNow() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::tm parts{};
    gmtime_r(&now.tv_sec, &parts);
    std::array<char, 32> seconds{};
    std::strftime(seconds.data(), seconds.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    std::array<char, 32> milliseconds{};
    std::snprintf(milliseconds.data(), milliseconds.size(), ".%03ldZ ", now.tv_nsec / 1'000'000);
    return seconds.data() + std::string(milliseconds.data());
}

std::string prefixOf(const Level& level, const char* tag) {
    std::array<char, 16> pid{};
    std::snprintf(pid.data(), pid.size(), "(%5d): ", static_cast<int>(getpid()));
    return (output().timed ? timeNow() : "") + level.letter + "/" + tag + pid.data();
}

// Every line of a longer text gets the prefix, so that no text can pass for another one's line.
int writeText(const Level& level, const char* tag, const std::string& text) {
    const std::string prefix = prefixOf(level, tag);
    const bool coloured = output().coloured;
    int total = 0;
    std::size_t begin = 0;
    while (true) {
        const std::size_t end = text.find('\n', begin);
        std::string line = coloured ? level.colour + prefix : prefix;
        line.append(text.substr(begin, end - begin)).append(coloured ? "\x1b[0m\n" : "\n");
        const int written = writeLine(line);
        if (written < 0) {
            return written;
        }
        total += written;
        if (end == std::string::npos || end + 1 == text.size()) {
            return total;
        }
        begin = end + 1;
    }
}

} // namespace

int __dlog_print(log_id_t log_id, int prio, const char* tag, const char* fmt, ...) {
    const Level* level = findLevel(prio);
    if (log_id == LOG_ID_INVALID || level == nullptr || prio == DLOG_SILENT || fmt == nullptr) {
        return -EINVAL;
    }
    const int savedError = errno;
    int result = 0;
    if (prio >= output().lowest) {
        char* text = nullptr;
        va_list arguments;
        va_start(arguments, fmt);
        const int length = vasprintf(&text, fmt, arguments);
        va_end(arguments);
        const c::Owner<char, std::free> owner(length < 0 ? nullptr : text);
        result = host::guarded(__func__, -ENOMEM, [&] {
            return owner != nullptr ? writeText(*level, tag != nullptr ? tag : "", owner.get()) : -ENOMEM;
        });
    }
    errno = savedError;
    return result;
}
