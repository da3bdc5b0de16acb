#ifndef DESKWATCH_FILE_WATCH_H
#define DESKWATCH_FILE_WATCH_H

#include <cstdint>
#include <filesystem>
#include <functional>

#include "c_owners.h"
#include "device/timer.h"

namespace deskwatch {

/// Tells through the main loop when a file, or what a folder holds, has changed. Where the system has no notifier left
/// (fs.inotify.max_user_instances, which many watches side by side use up), it looks several times a second.
class FileWatch {
public:
    /// The file need not exist yet.
    FileWatch(std::filesystem::path file, std::function<void()> changed);
    ~FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;

private:
    struct Look {
        std::filesystem::file_time_type time;
        std::uintmax_t size = 0;
    };

    Look look() const;
    void lookAgain();
    static void onChanged(GFileMonitor* monitor, GFile* file, GFile* other, GFileMonitorEvent event, gpointer self);

    std::filesystem::path file_;
    std::function<void()> changed_;
    c::ObjectOwner<GFileMonitor> monitor_;
    Look last_;
    Timer timer_;
};

} // namespace deskwatch

#endif
