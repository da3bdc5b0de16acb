#ifndef DESKWATCH_FOLLOWED_FILE_H
#define DESKWATCH_FOLLOWED_FILE_H

#include <filesystem>
#include <fstream>
#include <functional>

#include "status/file_watch.h"

namespace deskwatch {

/// A file that others append to. Changes are reported through the main loop.
class FollowedFile {
public:
    /// Called with what was appended.
    using Listener = std::function<void(const std::string& text)>;

    /// Begins at that byte of the file; the first `read` reports what is there already. The file need not exist yet.
    FollowedFile(std::filesystem::path file, Listener listener, std::streamoff begin = 0);

    /// Reports what was appended since the last time. Throws std::runtime_error when the file is not a regular one: a
    /// pipe or a device may never end.
    void read();

private:
    std::filesystem::path file_;
    Listener listener_;
    std::streamoff begin_;
    std::ifstream stream_;
    FileWatch watch_;
};

} // namespace deskwatch

#endif
