#include "device/device_layout.h"

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "c_owners.h"
#include "device/application_ids.h"
#include "host_bus.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

/// The end of a socket's path is a null character.
constexpr std::size_t longestSocketPath = sizeof(sockaddr_un::sun_path) - 1;

fs::path withoutTrailingSlash(const fs::path& folder) {
    const fs::path normal = fs::absolute(folder).lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

bool isControl(char character) {
    const auto code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7f;
}

bool belongsToDevice(const fs::path& name) {
    constexpr std::array<std::string_view, 14> names{"booted",   "bus",    "bus.conf", "bus.process", "boot.lock",
                                                     "services", "config", "run",      "apps",        "storage",
                                                     "passwd",   "group",  "log",      "log.boot"};
    return std::find(names.begin(), names.end(), name.native()) != names.end();
}

void refuseForeignFolder(const fs::path& folder) {
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (!belongsToDevice(entry.path().filename())) {
            throw std::runtime_error(folder.string() + " is not a watch folder: it contains " +
                                     entry.path().filename().string());
        }
    }
}

/// A folder cannot be made where a file is, or below it.
void refuseFile(const fs::path& folder) {
    std::error_code none;
    for (auto place = folder; place != place.root_path(); place = place.parent_path()) {
        if (fs::exists(place, none) && !fs::is_directory(place, none)) {
            throw std::runtime_error(place.string() + " is a file; a watch needs a folder");
        }
    }
}

/// SQLite takes no longer path for the service's database, which is some folders below.
constexpr std::size_t longestFolder = 450;

void refuseLongFolder(const fs::path& folder) {
    const auto size = folder.native().size();
    if (size > longestFolder) {
        throw std::runtime_error("the folder's path has " + std::to_string(size) + " bytes; with more than " +
                                 std::to_string(longestFolder) +
                                 " the service cannot open its database: " + folder.string());
    }
}

void makeFolder(const fs::path& folder) {
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        throw std::runtime_error("cannot make the folder " + folder.string() + ": " + error.message());
    }
}

/// Whoever boots a watch is the only one who may reach its bus.
void makePrivateFolder(const fs::path& folder) {
    mkdir(folder.c_str(), S_IRWXU);
    struct stat status {};
    if (lstat(folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != getuid()) {
        throw std::runtime_error("cannot place the bus's socket: " + folder.string() + " is not a folder of this user");
    }
}

void refuseInnerFolder(const fs::path& folder) {
    for (auto outer = folder.parent_path(); outer != outer.root_path(); outer = outer.parent_path()) {
        if (fs::exists(outer / "bus.conf") && fs::exists(outer / "services")) {
            throw std::runtime_error(folder.string() + " is inside the watch " + outer.string() +
                                     "; choose a folder outside of it");
        }
    }
}

} // namespace

DeviceLayout::DeviceLayout(const fs::path& folder) : folder_(withoutTrailingSlash(folder)) {
    const auto& path = folder_.native();
    if (std::any_of(path.begin(), path.end(), isControl)) {
        throw std::runtime_error("the folder's name contains control characters: " + folder_.string());
    }
    if (g_utf8_validate_len(path.data(), path.size(), nullptr) == FALSE) {
        throw std::runtime_error("the folder's name is not UTF-8, as the bus needs it: " + folder_.string());
    }
}

fs::path DeviceLayout::socket() const {
    fs::path inside = folder_ / "bus";
    if (inside.native().size() <= longestSocketPath) {
        return inside;
    }
    const c::MemoryOwner<char> name(g_compute_checksum_for_string(G_CHECKSUM_SHA256, folder_.c_str(), -1));
    return fs::path("/tmp") / ("deskwatch-" + std::to_string(getuid())) / name.get();
}

std::string DeviceLayout::busAddress() const {
    const c::MemoryOwner<char> path(g_dbus_address_escape_value(socket().c_str()));
    return std::string("unix:path=") + path.get();
}

Environment DeviceLayout::commonEnvironment() const {
    Environment environment = inheritedEnvironment();
    environment[host_bus::deviceVariable] = folder_.string();
    environment["DBUS_SESSION_BUS_ADDRESS"] = busAddress();
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = busAddress();
    environment["XDG_CONFIG_HOME"] = config().string();
    environment["XDG_RUNTIME_DIR"] = run().string();
    environment["DCONF_PROFILE"] = settingsProfile().string();
    environment["DLOG_FORMAT"] = "time";
    return environment;
}

Environment DeviceLayout::applicationEnvironment(const std::string& id) const {
    Environment environment{{host_bus::appIdVariable, id}};
    if (id == ids::service) {
        // The service looks up the device's owner, who does not exist on the machine.
        environment["LD_PRELOAD"] = "libnss_wrapper.so";
        environment["NSS_WRAPPER_PASSWD"] = passwd().string();
        environment["NSS_WRAPPER_GROUP"] = group().string();
    }
    return environment;
}

void DeviceLayout::makeFolders() const {
    refuseLongFolder(folder_);
    refuseInnerFolder(folder_);
    refuseFile(folder_);
    makeFolder(folder_);
    refuseForeignFolder(folder_);
    if (socket().parent_path() != folder_) {
        makePrivateFolder(socket().parent_path());
    }
    for (const auto& made : {services(), config(), run(), folder_ / "apps", internalStorage(), externalStorage()}) {
        makeFolder(made);
    }
    // The settings service shares memory through this folder and wants it for its user alone.
    fs::permissions(run(), fs::perms::owner_all);
}

} // namespace deskwatch
