#include "device/device_layout.h"

#include <sys/un.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>

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
    constexpr std::array<std::string_view, 13> names{"booted",   "bus",    "bus.conf", "bus.process", "boot.lock",
                                                     "services", "config", "run",      "apps",        "storage",
                                                     "passwd",   "group",  "log"};
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

} // namespace

DeviceLayout::DeviceLayout(const fs::path& folder) : folder_(withoutTrailingSlash(folder)) {
    const auto& path = folder_.native();
    if (std::any_of(path.begin(), path.end(), isControl)) {
        throw std::runtime_error("the folder's name contains control characters: " + folder_.string());
    }
    if (const auto length = socket().native().size(); length > longestSocketPath) {
        throw std::runtime_error("the path of the bus would be " + std::to_string(length) + " bytes long, at most " +
                                 std::to_string(longestSocketPath) + " are possible: " + socket().string());
    }
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
    fs::create_directories(folder_);
    refuseForeignFolder(folder_);
    for (const auto& made : {services(), config(), run(), folder_ / "apps", internalStorage(), externalStorage()}) {
        fs::create_directories(made);
    }
    // The settings service shares memory through this folder and wants it for its user alone.
    fs::permissions(run(), fs::perms::owner_all);
}

} // namespace deskwatch
