#ifndef DESKWATCH_PATIENCE_H
#define DESKWATCH_PATIENCE_H

#include <algorithm>
#include <chrono>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>

namespace deskwatch {

/// Something runs and has not answered in time. The text says what, for how long, and what ends it.
class NoAnswer : public std::runtime_error {
public:
    NoAnswer(const std::string& who, std::chrono::milliseconds patience);
};

/// The time as GLib's functions take it.
inline int inMilliseconds(std::chrono::milliseconds time) {
    return static_cast<int>(std::min<std::chrono::milliseconds::rep>(time.count(), std::numeric_limits<int>::max()));
}

/// After which time a wait is told. What runs and works answers much sooner; a start may take longer on a busy machine.
inline constexpr std::chrono::seconds noticeOfWork{1};
inline constexpr std::chrono::seconds noticeOfStart{5};

/// Tries until that time. When it is in vain, it tells on standard error what it waits for, such as "the popup, which
/// has not answered", and tries for the rest of its patience. `attempt` is given its time and says whether it has
/// succeeded.
bool tryPatiently(std::chrono::milliseconds patience, std::chrono::seconds untilNotice, const std::string& what,
                  const std::function<bool(std::chrono::milliseconds atMost)>& attempt);

} // namespace deskwatch

#endif
