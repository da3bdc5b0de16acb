#ifndef DESKWATCH_SERVICE_LOG_H
#define DESKWATCH_SERVICE_LOG_H

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "status/log_lines.h"

namespace deskwatch {

/// What the service has warned of while it handled something.
struct ServiceWarnings {
    /// Why the wearer must set a lock, in words; empty when there is no reason.
    std::string lockReason;
    /// Whether a screen stays closed because the tutorial is shown.
    bool isTutorialShown = false;
    /// The texts of all other warnings and errors.
    std::vector<std::string> others;
};

/// Reads the service's warnings and errors from a watch's log as it grows.
class ServiceLog {
public:
    explicit ServiceLog(std::filesystem::path file) : file_(std::move(file)) {}

    /// Takes what was logged since the last time.
    ServiceWarnings take();

private:
    std::filesystem::path file_;
    std::streamoff position_ = 0;
    LogLines lines_{'W'};
};

} // namespace deskwatch

#endif
