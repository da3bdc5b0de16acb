// What happens to a watch, in any order: requests, answers, changed keys, restarts, failing calls. Whatever it was,
// afterwards the service works.

#include "accounts.h"
#include "checks.h"
#include "database_file.h"
#include "fuzz_target.h"
#include "fuzzed_watch.h"
#include "story_events.h"

namespace {

using fuzz::require;

/// One process of the service follows the other; in each, one event follows the other.
void play(fuzz::ByteReader& bytes, fuzz::FuzzedWatch& watch) {
    while (!bytes.isEmpty()) {
        watch.runOnce([&] {
            while (!bytes.isEmpty() && !watch.platform.service.exited) {
                fuzz::nextEvent(bytes)(watch);
                watch.requireNothingLeaked();
            }
        });
        bytes.byte(); // a service that refuses to start must not stop the story
    }
}

void requireNoFlaw(const std::string& flaw) {
    require(flaw.empty(), "no flaw: " + flaw);
}

/// Where the service administers the device, its start has enforced the stored policies. An administrator that could
/// not be registered with the first account stays unregistered until no account is left: that is when the service
/// registers again.
void requireAdministration(fuzz::FuzzedWatch& watch) {
    if (watch.platform.devicePolicy.clients.empty()) {
        harness::deleteEveryAccount(watch);
        require(harness::storedAccounts().empty(), "every account can be removed");
    } else if (!harness::storedAccounts().empty()) {
        requireNoFlaw(harness::flawOfEnforcement(watch));
    }
}

/// Once nothing fails any more, the next start finds a sound database, and a good request is served in full.
void requireRecovery(fuzz::FuzzedWatch& watch) {
    fuzz::endFaults(watch);
    harness::storedRows(watch.databasePath());
    const bool cameUp = watch.runOnce([&] {
        requireAdministration(watch);
        requireNoFlaw(harness::flawAfterGoodRequest(watch));
    });
    require(cameUp, "the service starts");
    harness::storedRows(watch.databasePath());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::ByteReader bytes(data, size);
    fuzz::FuzzedWatch watch;
    play(bytes, watch);
    requireRecovery(watch);
    return 0;
}
