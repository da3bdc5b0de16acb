#include "status/followed_file.h"

#include <array>
#include <stdexcept>

namespace deskwatch {

FollowedFile::FollowedFile(const std::filesystem::path& file, Listener listener)
    : file_(file), listener_(std::move(listener)) {
    const c::ObjectOwner<GFile> place(g_file_new_for_path(file.c_str()));
    GError* error = nullptr;
    monitor_.reset(g_file_monitor_file(place.get(), G_FILE_MONITOR_NONE, nullptr, &error));
    if (monitor_ == nullptr) {
        throw std::runtime_error("cannot watch " + file.string() + ": " + c::takeMessage(error));
    }
    g_file_monitor_set_rate_limit(monitor_.get(), 0);
    g_signal_connect(monitor_.get(), "changed", G_CALLBACK(onChanged), this);
}

FollowedFile::~FollowedFile() {
    g_signal_handlers_disconnect_by_data(monitor_.get(), this);
}

void FollowedFile::read() {
    if (!stream_.is_open()) {
        stream_.open(file_, std::ios::binary);
    }
    stream_.clear(); // its end was reached the last time
    std::array<char, 65536> buffer{};
    while (stream_.read(buffer.data(), buffer.size()), stream_.gcount() > 0) {
        listener_(std::string(buffer.data(), static_cast<std::size_t>(stream_.gcount())));
    }
}

void FollowedFile::onChanged(GFileMonitor* /*monitor*/, GFile* /*file*/, GFile* /*other*/, GFileMonitorEvent /*event*/,
                             gpointer self) {
    static_cast<FollowedFile*>(self)->read();
}

} // namespace deskwatch
