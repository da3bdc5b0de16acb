#ifndef TESTS_MAIN_LOOP_H
#define TESTS_MAIN_LOOP_H

#include <functional>

/// Runs the default main context until the condition holds, looking at it again after every event and a few times a
/// second. False when ten seconds were not enough.
[[nodiscard]] bool runMainLoopUntil(const std::function<bool()>& condition);

#endif
