#ifndef CONTRACT_ENVIRONMENT_H
#define CONTRACT_ENVIRONMENT_H

#include <functional>

/// What the contract tests need of the platform that they run against. Each platform brings one source for it.
///
/// A test runs in its own process and on a device of its own: no setting was ever made, no port is open, and nobody
/// administers it.
namespace contract {

/// The id that the test's process has as an application.
inline constexpr char applicationId[] = "com.example.contract";

/// Makes the platform ready, once, before the first call to it.
void setUp();

/// Releases what setUp() made.
void tearDown();

/// Runs the main loop until the condition holds. False when it does not in time.
[[nodiscard]] bool runUntil(const std::function<bool()>& condition);

/// Runs the main loop until all that was due when this was called has been handled.
void runPending();

} // namespace contract

#endif
