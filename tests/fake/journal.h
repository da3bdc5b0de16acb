#ifndef FAKE_JOURNAL_H
#define FAKE_JOURNAL_H

#include <dlog.h>

#include <string>
#include <variant>
#include <vector>

namespace fake {

/// One line that the service logged, taken apart. A line of another form keeps its whole text and has no function.
struct LogLine {
    int level = DLOG_UNKNOWN;
    std::string tag;
    std::string file;
    std::string function;
    int line = 0;
    std::string text;
};

/// Takes "file: function(line) >  text" apart.
LogLine parseLogLine(int level, const std::string& tag, const std::string& message);

/// Everything that the service told the platform, in order. A call reads as its function and arguments, separated by
/// blanks ("vconf_set_int db/a 1"); a log line as its level and text ("W Low memory!").
class Journal {
public:
    using Lines = std::vector<std::string>;

    /// False where nobody reads the journal: then nothing is written, which takes most of the fake's time.
    bool isKept = true;

    void addCall(std::string call) { entries_.emplace_back(std::move(call)); }
    void addLog(LogLine line) { entries_.emplace_back(std::move(line)); }

    /// Forgets everything, so that the act of a test is read apart from its arrangement.
    void clear() { entries_.clear(); }

    /// Calls and log lines.
    Lines all() const;

    /// The calls that begin with one of the texts; every call when none is given.
    Lines calls(const Lines& beginnings = {""}) const;

    /// The calls that write a setting of the device policy manager.
    Lines deviceSettings() const;

    /// The log lines of this level and above.
    Lines logs(int fromLevel = DLOG_UNKNOWN) const;

    /// The log lines of WARN and above.
    Lines warnings() const { return logs(DLOG_WARN); }

    /// The log lines that carry this function name.
    Lines logsOf(const std::string& function) const;

    /// The log lines with all their fields.
    std::vector<LogLine> logLines() const;

private:
    using Entry = std::variant<std::string, LogLine>;

    std::vector<Entry> entries_;
};

} // namespace fake

#endif
