#ifndef FUZZ_FUZZED_WATCH_H
#define FUZZ_FUZZED_WATCH_H

#include "watch.h"

namespace fuzz {

/// A fresh watch for one input. The service runs on it any number of times, each time as a new process would: a real
/// process per input would be a hundred times slower.
class FuzzedWatch : public harness::Watch {
public:
    FuzzedWatch();
    FuzzedWatch(const FuzzedWatch&) = delete;
    FuzzedWatch& operator=(const FuzzedWatch&) = delete;
    ~FuzzedWatch() { endProcess(); }

    /// The service from its start to the end of its process. Returns whether it came up.
    bool runOnce(const std::function<void()>& meanwhile);

    /// Requires that nothing of the platform's is held between two events.
    void requireNothingLeaked() const;
};

/// Has every call of the platform work again.
void endFaults(harness::Watch& watch);

} // namespace fuzz

#endif
