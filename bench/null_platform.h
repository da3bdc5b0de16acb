#ifndef BENCH_NULL_PLATFORM_H
#define BENCH_NULL_PLATFORM_H

#include <functional>
#include <string>

namespace bench {

/// Names the folder, with a trailing slash, in which the service keeps its database.
void setDataPath(const std::string& path);

/// What happens while the application runs: the work of service_app_main between the application's start and its end.
void setStory(std::function<void()> story);

using Trigger = void (*)();

/// Runs the trigger, under a name that tools can be told to count in.
void pullTrigger(Trigger trigger);

inline constexpr int passwordLock = 2;

/// Sets the screen's lock (0: none) and tells whoever watches it.
void setLock(int lock);

/// Hands a request to the port that the service has opened.
void deliver(const std::string& request, const std::string& argument);

} // namespace bench

#endif
