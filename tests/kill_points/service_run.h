#ifndef KILL_POINTS_SERVICE_RUN_H
#define KILL_POINTS_SERVICE_RUN_H

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "fake_platform.h"

namespace kill_points {

/// A request of the mail application.
struct Request {
    std::string name;
    std::string argument;
};

/// The service in this process, on the fake platform, with what it stores below a folder that outlives it.
class ServiceRun {
public:
    explicit ServiceRun(const std::filesystem::path& folder);

    /// Where the service keeps its accounts, below such a folder.
    static std::filesystem::path database(const std::filesystem::path& folder);

    /// Starts the service, works off what the script sends it, and ends it.
    void run(const std::function<void()>& script);

    void send(const Request& request);

    /// The stored accounts, one in a line.
    static std::string accounts();

    /// What the device was told since the last request or, before the first one, since the start.
    std::string deviceSettings() const;

    /// The accounts with what the device was told. A start leaves the device alone while nothing is stored, so that it
    /// does not belong to the state then.
    std::string state() const;

    /// The errors of the database in the log.
    std::vector<std::string> databaseErrors() const;

private:
    std::filesystem::path data_; // first, since it is where the platform makes its own files
    fake::FakePlatform platform_;
};

} // namespace kill_points

#endif
