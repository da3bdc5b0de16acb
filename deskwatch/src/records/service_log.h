#ifndef DESKWATCH_SERVICE_LOG_H
#define DESKWATCH_SERVICE_LOG_H

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "records/log_lines.h"

namespace deskwatch {

/// A line of the service's log: `W/TESK_CONSUMER(  123): File.cpp: function(45) >  text`.
struct ServiceLine {
    char level = 'I';
    std::string file;
    std::string function;
    std::string text;
};

/// What the service has warned of while it handled something.
struct ServiceWarnings {
    /// Why the wearer must set a lock, in words; empty when there is no reason.
    std::string lockReason;
    /// Whether a screen stays closed because the tutorial is shown.
    bool isTutorialShown = false;
    /// The texts of all other warnings and errors.
    std::vector<std::string> others;
};

/// How the service begins to tell a setting that the platform refused.
inline constexpr std::string_view refusedSetting = "[EAS] Failed ";

/// Why each setting is refused while no account is stored; the service then does not administer the watch.
inline constexpr char takesNoSetting[] =
    "no account is stored: nobody administers the watch, and the platform takes no setting";

/// What these lines warn of.
ServiceWarnings warningsOf(const std::vector<ServiceLine>& lines);

/// Reads the service's lines from a watch's log as it grows.
class ServiceLog {
public:
    explicit ServiceLog(std::filesystem::path file) : file_(std::move(file)) {}

    /// Passes over what was logged until now.
    void skip();

    /// Takes what was logged since the last time.
    std::vector<ServiceLine> takeLines();

    /// The same as warnings.
    ServiceWarnings take() { return warningsOf(takeLines()); }

private:
    std::filesystem::path file_;
    std::streamoff position_ = 0;
    LogLines lines_{std::nullopt};
};

} // namespace deskwatch

#endif
