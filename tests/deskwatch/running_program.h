#ifndef DESKWATCH_RUNNING_PROGRAM_H
#define DESKWATCH_RUNNING_PROGRAM_H

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "c_owners.h"

/// The deskwatch program while it runs; it ends with this object.
class RunningProgram {
public:
    explicit RunningProgram(const std::vector<std::string>& arguments);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// The next line that it writes, without the line break. Throws std::runtime_error when none comes in time or its
    /// output has ended.
    std::string nextLine();

    /// The next line that the condition holds for; the others before it are dropped.
    std::string awaitLine(const std::function<bool(const std::string& line)>& condition);

    void signal(int number) const { g_subprocess_send_signal(process_.get(), number); }

    /// Stops reading: what it writes from now on fails.
    void closeReader() const { g_input_stream_close(g_subprocess_get_stdout_pipe(process_.get()), nullptr, nullptr); }

    /// Waits for its end, with what it writes until then left unread; returns its exit status, -1 when
    /// a signal ended it.
    int waitForEnd();

private:
    /// Reads what it writes next; false at the end of its output.
    bool readMore();

    c::ObjectOwner<GSubprocess> process_;
    std::string unread_;
};

#endif
