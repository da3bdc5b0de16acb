#ifndef HARNESS_CHILD_PROCESS_H
#define HARNESS_CHILD_PROCESS_H

#include <functional>
#include <string>

namespace harness {

/// How a process ended, and what it had to tell.
struct ChildEnd {
    std::string text; ///< the function's result, or the text of the exception that ended it
    int status = 0;

    /// Whether the function returned.
    bool isFinished() const { return status == 0; }

    /// "exit 3", "signal 11".
    std::string how() const;
};

/// Calls the function in a copy of this process, which may break whatever it likes: the next call starts from the same
/// state. One that takes longer than 20 seconds is ended. Throws when there can be no such process.
ChildEnd runInChild(const std::function<std::string()>& function);

/// Forks, calls the function in the copy and ends that without the exit handlers, which belong to the parent. An
/// exception goes to the standard error and into the exit status. Returns the id of the child; throws when there is
/// none.
int startChild(const std::function<void()>& function);

} // namespace harness

#endif
