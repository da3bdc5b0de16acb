#include "changes.h"

#include <poll.h>
#include <sys/inotify.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace system_test {
namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

/// Where the settings service tells readers that their view is old: it marks the file there and takes it away.
fs::path settingsMarks(const deskwatch::DeviceLayout& layout) {
    fs::path folder = layout.run() / "dconf";
    fs::create_directories(folder);
    fs::permissions(folder, fs::perms::owner_all);
    return folder;
}

} // namespace

Changes::Changes(const deskwatch::DeviceLayout& layout) : events_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    device(layout.log(), IN_MODIFY);
    device(settingsMarks(layout), IN_DELETE);
}

bool Changes::waitUntil(const Condition& condition, std::chrono::milliseconds atMost) const {
    const auto deadline = Clock::now() + atMost;
    while (!condition()) {
        if (!waitForChange(deadline)) {
            return condition();
        }
    }
    return true;
}

void Changes::device(const fs::path& path, std::uint32_t events) const {
    if (inotify_add_watch(events_.get(), path.c_str(), events) < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot watch " + path.string());
    }
}

bool Changes::waitForChange(Clock::time_point deadline) const {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    pollfd descriptor{events_.get(), POLLIN, 0};
    if (left.count() <= 0 || poll(&descriptor, 1, static_cast<int>(left.count())) <= 0) {
        return false;
    }
    std::array<char, 4096> ignored{};
    while (read(events_.get(), ignored.data(), ignored.size()) > 0) {
    }
    return true;
}

} // namespace system_test
