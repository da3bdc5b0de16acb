#ifndef HARNESS_WATCH_H
#define HARNESS_WATCH_H

#include <functional>
#include <optional>
#include <string>

#include "fake_platform.h"

namespace harness {

/// A watch for one test, and the service on it: unlocked, unencrypted, outside of Korea, nothing stored, no bus to
/// reach. What GLib holds for a programmer's error ends the process.
class Watch {
public:
    Watch();

    fake::FakePlatform platform;

    /// Runs the service's main; `meanwhile` happens in place of its main loop. Returns what main returns.
    int run(const std::function<void()>& meanwhile);

    /// Ends what would go with the service's process, so that the next run finds the watch as it was left.
    void endProcess();

    /// Delivers a request of the mail application, unless the service's port is closed, and what follows from it.
    void request(const std::optional<std::string>& name, const std::optional<std::string>& argument);

    /// Where the service keeps its accounts.
    std::string databasePath() const { return platform.dataPath + "dbspace/.tesk.db"; }
};

} // namespace harness

#endif
