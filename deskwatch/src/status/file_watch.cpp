#include "status/file_watch.h"

#include <utility>

namespace deskwatch {

FileWatch::FileWatch(std::filesystem::path file, std::function<void()> changed)
    : file_(std::move(file)), changed_(std::move(changed)) {
    constexpr std::chrono::milliseconds period{250};
    const c::ObjectOwner<GFile> place(g_file_new_for_path(file_.c_str()));
    monitor_.reset(g_file_monitor(place.get(), G_FILE_MONITOR_NONE, nullptr, nullptr));
    if (monitor_ != nullptr) {
        g_file_monitor_set_rate_limit(monitor_.get(), 0);
        g_signal_connect(monitor_.get(), "changed", G_CALLBACK(onChanged), this);
    } else {
        last_ = look();
        timer_.repeat(period, [this] { lookAgain(); });
    }
}

FileWatch::~FileWatch() {
    if (monitor_ != nullptr) {
        g_signal_handlers_disconnect_by_data(monitor_.get(), this);
    }
}

FileWatch::Look FileWatch::look() const {
    std::error_code ignored;
    return {std::filesystem::last_write_time(file_, ignored), std::filesystem::file_size(file_, ignored)};
}

void FileWatch::onChanged(GFileMonitor* /*monitor*/, GFile* /*file*/, GFile* /*other*/, GFileMonitorEvent /*event*/,
                          gpointer self) {
    static_cast<FileWatch*>(self)->changed_();
}

void FileWatch::lookAgain() {
    const auto now = look();
    const auto before = std::exchange(last_, now);
    if (now.time != before.time || now.size != before.size) {
        changed_();
    }
}

} // namespace deskwatch
