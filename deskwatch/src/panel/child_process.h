#ifndef DESKWATCH_CHILD_PROCESS_H
#define DESKWATCH_CHILD_PROCESS_H

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "c_owners.h"

namespace deskwatch {

/// What became of a command of this program.
struct CommandOutcome {
    /// -1 when a signal ended it.
    int status = -1;
    std::string output;
    std::string errors;
};

/// Runs this program with these arguments and that standard input, and reports through the main loop when it has ended.
/// Throws std::runtime_error when it does not start.
void runCommand(const std::vector<std::string>& arguments, const std::string& input,
                std::function<void(const CommandOutcome& outcome)> whenDone);

/// This program as a process that writes lines as long as it runs; it ends with this object.
class LineProcess {
public:
    using OnLine = std::function<void(const std::string& line)>;
    /// Called with the exit status, -1 when a signal ended the process.
    using OnEnd = std::function<void(int status)>;

    /// Reports each line without its break, those of standard error included, and then once the end. Throws
    /// std::runtime_error when the process does not start.
    LineProcess(const std::vector<std::string>& arguments, OnLine onLine, OnEnd onEnd);
    ~LineProcess();
    LineProcess(const LineProcess&) = delete;
    LineProcess& operator=(const LineProcess&) = delete;

    /// Asks the process to end, as ^C does.
    void interrupt() const;

private:
    struct State;

    std::shared_ptr<State> state_;
};

} // namespace deskwatch

#endif
