#ifndef DESKWATCH_FOLLOWED_FILE_H
#define DESKWATCH_FOLLOWED_FILE_H

#include <filesystem>
#include <fstream>
#include <functional>

#include "c_owners.h"

namespace deskwatch {

/// A file that others append to. Changes are reported through the main loop.
class FollowedFile {
public:
    /// Called with what was appended.
    using Listener = std::function<void(const std::string& text)>;

    /// Begins at the file's start; the first `read` reports what is there already. The file need not exist yet.
    /// Throws std::runtime_error when it cannot be watched.
    FollowedFile(const std::filesystem::path& file, Listener listener);
    ~FollowedFile();
    FollowedFile(const FollowedFile&) = delete;
    FollowedFile& operator=(const FollowedFile&) = delete;

    /// Reports what was appended since the last time.
    void read();

private:
    static void onChanged(GFileMonitor* monitor, GFile* file, GFile* other, GFileMonitorEvent event, gpointer self);

    std::filesystem::path file_;
    Listener listener_;
    std::ifstream stream_;
    c::ObjectOwner<GFileMonitor> monitor_;
};

} // namespace deskwatch

#endif
