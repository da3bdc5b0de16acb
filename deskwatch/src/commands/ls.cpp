#include <future>
#include <iostream>
#include <memory>

#include "commands.h"
#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/registry.h"
#include "text/text_table.h"
#include "text/value_output.h"

namespace deskwatch {
namespace {

struct ListedDevice {
    std::string folder;
    std::string state;
    bool isServiceRunning = false;
    bool isNewest = false;
};

/// A bus that works answers at once. One that hangs must not keep the list.
constexpr std::chrono::seconds longestAnswer{5};

/// A watch that cannot be asked any more is listed, too: `off` and `boot` clean it up.
ListedDevice look(const std::filesystem::path& folder) {
    ListedDevice listed{folder.string(), ""};
    try {
        const Device device(folder);
        if (device.exists() && device.isBooted()) {
            listed.isServiceRunning = BusClient(device.busAddress(), longestAnswer).daemon().isOwned(ids::service);
            listed.state = "booted";
        } else {
            listed.isServiceRunning = device.hasProgramOf(ids::service);
            listed.state = device.exists() ? "ended suddenly" : "gone";
        }
    } catch (const std::runtime_error&) {
        listed.state = "does not respond";
    }
    return listed;
}

std::vector<ListedDevice> listedDevices() {
    std::vector<std::future<ListedDevice>> looks; // at the same time, so that those that hang do not add up
    for (const auto& folder : Registry::ofUser().folders()) {
        looks.push_back(std::async(std::launch::async, look, folder));
    }
    std::vector<ListedDevice> devices;
    devices.reserve(looks.size());
    for (auto& one : looks) {
        devices.push_back(one.get());
    }
    const auto newest = newestWatch();
    for (auto& device : devices) {
        device.isNewest = newest && device.folder == newest->string();
    }
    return devices;
}

/// Forgets the watches whose folders are gone, and ends what still runs of them.
void prune() {
    for (const auto& folder : Registry::ofUser().folders()) {
        if (!isThere(folder)) {
            Device(folder).kill();
            Registry::ofUser().remove(folder);
        }
    }
}

std::string asTable(const std::vector<ListedDevice>& devices) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(devices.size());
    for (const auto& device : devices) {
        rows.push_back({device.folder, device.state, device.isServiceRunning ? "service runs" : "service does not run",
                        device.isNewest ? "newest" : ""});
    }
    return textTable(rows);
}

std::string asJson(const std::vector<ListedDevice>& devices) {
    auto list = nlohmann::ordered_json::array();
    for (const auto& device : devices) {
        list.push_back({{"watch", device.folder},
                        {"state", device.state},
                        {"serviceRunning", device.isServiceRunning},
                        {"newest", device.isNewest}});
    }
    return jsonText(list, 2) + "\n";
}

} // namespace

void addListCommand(CLI::App& program) {
    auto* command = program.add_subcommand("ls", "List the watches that were booted and not switched off");
    auto isJson = std::make_shared<bool>(false);
    command->add_flag("--json", *isJson, "A JSON array instead of a table");
    auto isPruned = std::make_shared<bool>(false);
    command->add_flag("--prune", *isPruned,
                      "First forget the watches whose folders are gone, and end what still runs of them");
    command->footer("The last one is the newest: commands apply to it unless --device names another.\n"
                    "Example:\n  deskwatch ls");
    command->callback([isJson, isPruned] {
        if (*isPruned) {
            prune();
        }
        const auto devices = listedDevices();
        std::cout << (*isJson ? asJson(devices) : asTable(devices));
    });
}

} // namespace deskwatch
