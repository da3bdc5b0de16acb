#ifndef FUZZ_FUZZED_SERVICE_H
#define FUZZ_FUZZED_SERVICE_H

#include <functional>
#include <string>

#include "fake_platform.h"

namespace fuzz {

/// A fresh watch for one input, and the service on it: unencrypted, outside of Korea, without a lock, nothing stored.
/// The service runs when it is told to, any number of times, each time as a new process on the same watch.
class FuzzedService {
public:
    FuzzedService();
    FuzzedService(const FuzzedService&) = delete;
    FuzzedService& operator=(const FuzzedService&) = delete;
    ~FuzzedService();

    /// The service from its start to its end; `meanwhile` happens in place of its main loop. Returns whether it came
    /// up.
    bool run(const std::function<void()>& meanwhile);

    /// Delivers a request, unless the service's port is closed, and what follows from it.
    void request(const std::optional<std::string>& name, const std::optional<std::string>& argument);

    /// Has every call of the platform work again.
    void endFaults();

    /// Requires that nothing of the platform's is held between two events.
    void requireNothingLeaked() const;

    /// Requires that the service's database, where there is one, is in order.
    void requireSoundDatabase() const;

    /// The path of the service's database.
    std::string databasePath() const { return platform.dataPath + "dbspace/.tesk.db"; }

    fake::FakePlatform platform;
};

} // namespace fuzz

#endif
