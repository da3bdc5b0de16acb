#include "dpm_wipe.h"

#include <fstream>

#include "bus.h"
#include "guard.h"
#include "host_bus.h"

namespace host::dpm {
namespace {

namespace fs = std::filesystem;

// Compares the folder's real path with the expected one, which reveals a link at any level.
void requireInside(const fs::path& device, const fs::path& storage, const char* name) {
    const bool inPlace = fs::is_directory(fs::symlink_status(storage)) &&
                         fs::canonical(storage) == fs::canonical(device) / "storage" / name;
    if (!inPlace) {
        throw HostError("refused to wipe " + storage.string() + ": it is not a folder of the device " +
                        device.string());
    }
}

void emptyFolder(const fs::path& folder) {
    std::string failures;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        std::error_code error;
        fs::remove_all(entry.path(), error);
        if (error) {
            failures += (failures.empty() ? "" : ", ") + entry.path().string() + " (" + error.message() + ")";
        }
    }
    if (!failures.empty()) {
        throw HostError("cannot wipe all of " + folder.string() + ": these remain: " + failures);
    }
}

// Whoever looks later cannot tell an emptied folder from one that was always empty.
void countWipe(const fs::path& device, const char* name) {
    std::ofstream(device / "run" / (std::string("wipes-") + name), std::ios::app) << 'x';
}

// The storage is empty whether or not somebody can be told.
void announceWipe(const char* name) {
    guarded("the news of a wipe", [name] {
        g_dbus_connection_emit_signal(Bus::get().connection(), nullptr, host_bus::systemPath, "tesk.host.System",
                                      "Wiped", g_variant_new("(s)", name), nullptr);
    });
}

} // namespace

void wipeStorage(const fs::path& device, const char* name) {
    const fs::path storage = device / "storage" / name;
    if (!fs::exists(fs::symlink_status(storage))) {
        return;
    }
    requireInside(device, storage, name);
    emptyFolder(storage);
    countWipe(device, name);
    announceWipe(name);
}

} // namespace host::dpm
