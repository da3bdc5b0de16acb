#ifndef CONTRACT_ENVIRONMENT_H
#define CONTRACT_ENVIRONMENT_H

#include <functional>
#include <string>
#include <vector>

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

/// Takes the daemon of the device policy manager away. False where that cannot be done.
[[nodiscard]] bool removePolicyDaemon();

/// Whether the storage may be wiped. A device would lose what is on it: there the call is answered without the
/// platform.
[[nodiscard]] bool mayWipe();

/// Another application, with a port. Its functions do not run the main loop.
namespace remote {

inline constexpr char id[] = "com.example.remote";
inline constexpr char port[] = "control";

/// Starts it, anew after its end, and returns when its port takes messages. False where that cannot be done.
[[nodiscard]] bool start();

/// Lets it write a shared key. False where that cannot be done.
[[nodiscard]] bool setKey(const std::string& key, int value);

/// Kills it, and returns when its port is gone.
void kill();

/// The texts of the messages that it got in all its lives: what they have under "text". "no message" stands for one
/// that it could not read.
std::vector<std::string> texts();

} // namespace remote

} // namespace contract

#endif
