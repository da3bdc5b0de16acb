#ifndef DESKWATCH_OUTPUT_H
#define DESKWATCH_OUTPUT_H

#include <stdexcept>

namespace deskwatch {

/// Keeps the output from ending in a connection that happens to get the number of a closed standard output.
void reserveOutput();

/// What was written to standard output is lost.
class OutputLost : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Hands over what was written to standard output. Throws OutputLost with the reason when that fails. A reader
/// that went away ends the process by SIGPIPE, as it ends other programs.
void flushOutput();

/// For a command that goes on writing as things happen: it ends when its reader goes away, even if nothing happens any
/// more. Lives until the process ends.
void endWithReader();

/// The same as flushOutput for what is called by C, which lets no exception pass: a failure ends the process with 1.
void flushFollowed();

} // namespace deskwatch

#endif
