#ifndef FAULTS_CHILD_H
#define FAULTS_CHILD_H

#include <functional>
#include <string>

/// How a process ended, and what it had to tell.
struct ChildEnd {
    std::string text;
    int status = 0;

    /// Whether the work was done to its end.
    bool isFinished() const { return status == 0; }

    /// "exit 3", "signal 11".
    std::string how() const;
};

/// Calls the function in a copy of this process, which may break whatever it likes: the next call starts from the same
/// state. One that takes longer than 20 seconds is ended.
ChildEnd runInChild(const std::function<std::string()>& function);

#endif
