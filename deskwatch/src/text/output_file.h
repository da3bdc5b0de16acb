#ifndef DESKWATCH_OUTPUT_FILE_H
#define DESKWATCH_OUTPUT_FILE_H

#include <string>
#include <string_view>

#include "device/file_descriptor.h"

namespace deskwatch {

/// The name by which a command line means standard output.
inline constexpr char standardOutput[] = "-";

/// A file that grows as things happen, or standard output. Everything here throws std::runtime_error with the file and
/// the reason when it cannot be written.
class OutputFile {
public:
    /// Creates the file, or empties it.
    explicit OutputFile(const std::string& file);

    /// Everything is with the system when this returns. A reader that went away ends the process.
    void write(std::string_view text) const;

    /// Ends the process when this is a pipe that nobody reads any more, even if nothing is left to write.
    void requireReader() const;

private:
    std::string name_;
    FileDescriptor opened_;
};

/// Gives a file a new content. A regular file is replaced in one step, so that a full disk does not cost the old
/// content; it keeps its permissions. A link stays: the file that it names is written. Anything else, such as a device
/// or a pipe, is written to.
void writeOutput(const std::string& file, const std::string& text);

/// Ends the process by SIGPIPE, as the end of a reader ends other programs.
void endByBrokenPipe();

/// How messages name a file that is written: its path, with what is not UTF-8 replaced, or "standard output".
std::string outputName(const std::string& file);

} // namespace deskwatch

#endif
