#include "device/registry.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <system_error>

#include "c_owners.h"
#include "device/device_layout.h"
#include "device/file_descriptor.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

/// Keeps two commands from changing the list at the same time.
FileDescriptor lockList(const fs::path& folder) {
    const fs::path path = folder / "watches.lock";
    FileDescriptor lock(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    if (!lock.isOpen() || flock(lock.get(), LOCK_EX) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot lock " + path.string());
    }
    return lock;
}

void write(const fs::path& file, const std::vector<fs::path>& folders) {
    std::string text;
    for (const auto& folder : folders) {
        text += folder.string() + "\n";
    }
    GError* error = nullptr;
    if (g_file_set_contents(file.c_str(), text.data(), static_cast<gssize>(text.size()), &error) == FALSE) {
        throw std::runtime_error("cannot write " + file.string() + ": " + c::takeMessage(error));
    }
}

bool contains(const std::vector<fs::path>& folders, const fs::path& folder) {
    return std::find(folders.begin(), folders.end(), folder) != folders.end();
}

/// Whether a boot can have written this line.
bool isWatchFolder(const std::string& line) {
    try {
        return DeviceLayout(line).folder() == line;
    } catch (const std::runtime_error&) {
        return false;
    }
}

} // namespace

Registry Registry::ofUser() {
    const char* state = std::getenv("XDG_STATE_HOME");
    const fs::path folder =
        state != nullptr && *state == '/' ? fs::path(state) : fs::path(g_get_home_dir()) / ".local" / "state";
    return Registry(folder / "deskwatch");
}

void Registry::add(const fs::path& folder) const {
    change([&](Folders& all) {
        all.erase(std::remove(all.begin(), all.end(), folder), all.end());
        all.push_back(folder);
    });
}

bool Registry::announce(const fs::path& folder) const {
    bool isNew = false;
    change([&](Folders& all) {
        isNew = !contains(all, folder);
        if (isNew) {
            all.insert(all.begin(), folder);
        }
    });
    return isNew;
}

void Registry::remove(const fs::path& folder) const {
    if (contains(folders(), folder)) {
        change([&](Folders& all) { all.erase(std::remove(all.begin(), all.end(), folder), all.end()); });
    }
}

std::optional<fs::path> Registry::newest() const {
    const auto all = folders();
    return all.empty() ? std::nullopt : std::optional(all.back());
}

std::vector<fs::path> Registry::folders() const {
    std::vector<fs::path> all;
    std::ifstream file(folder_ / "watches");
    for (std::string line; std::getline(file, line);) {
        if (isWatchFolder(line)) {
            all.emplace_back(line);
        }
    }
    return all;
}

void Registry::change(const std::function<void(Folders&)>& action) const {
    try {
        std::error_code refused;
        if (fs::create_directories(folder_, refused); refused) {
            throw std::system_error(refused, "cannot make the folder " + folder_.string());
        }
        const auto lock = lockList(folder_);
        auto all = folders();
        action(all);
        write(folder_ / "watches", all);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(std::string(error.what()) +
                                 "; set XDG_STATE_HOME to a folder that can keep the list of watches");
    }
}

} // namespace deskwatch
