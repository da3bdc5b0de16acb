#ifndef DESKWATCH_PROCESS_HANDLE_H
#define DESKWATCH_PROCESS_HANDLE_H

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "device/file_descriptor.h"

namespace deskwatch {

/// Names one process for good: a number is reused for another process some day; the time of the start tells the two
/// apart.
struct ProcessIdentity {
    pid_t pid = 0;
    /// In clock ticks since the machine started.
    unsigned long long startTime = 0;
};

/// Reads the identity out of the text of a /proc/<pid>/stat file; none when the text is not of that form.
std::optional<ProcessIdentity> parseProcessStat(const std::string& text);

/// A handle of a running process: signals and waiting reach that process and never a later one with its number.
class ProcessHandle {
public:
    /// The process of that number; none when it does not run.
    static std::optional<ProcessHandle> open(pid_t pid);

    /// The process of that identity; none when it has ended, even when its number is in use again.
    static std::optional<ProcessHandle> open(const ProcessIdentity& identity);

    pid_t pid() const { return pid_; }

    /// Sends a signal; a process that has already ended is not an error. Throws std::system_error when it is not
    /// allowed.
    void signal(int number) const;

    /// Waits for the end of the process. False when it still runs after that time.
    bool waitForEnd(std::chrono::milliseconds atMost) const;

    /// Whether it was started with this variable in its environment.
    bool hasVariable(const std::string& name, const std::string& value) const;

    /// The file name of its program; empty when that is not known.
    std::string program() const;

    /// Whether a process that it started runs, or has ended and was not asked for.
    bool hasChildren() const;

    /// The processes of a session, those that have ended left out.
    static std::vector<ProcessHandle> ofSession(pid_t session);

    /// The processes that were started with this variable in their environment, those of the caller's own session left
    /// out.
    static std::vector<ProcessHandle> withVariable(const std::string& name, const std::string& value);

private:
    ProcessHandle(pid_t pid, FileDescriptor descriptor) : pid_(pid), descriptor_(std::move(descriptor)) {}

    pid_t pid_;
    FileDescriptor descriptor_;
};

/// Waits for the end of a process, and tells on standard error when that takes a second. Throws std::runtime_error with
/// what would end it when it still runs after that time.
void awaitEnd(const ProcessHandle& process, std::chrono::milliseconds atMost);

} // namespace deskwatch

#endif
