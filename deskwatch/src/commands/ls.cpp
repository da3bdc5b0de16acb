#include "commands.h"

#include "application_ids.h"
#include "bus_client.h"
#include "registry.h"
#include "text_table.h"
#include "value_output.h"

#include <algorithm>
#include <iostream>
#include <memory>

namespace deskwatch {
namespace {

struct ListedWatch {
    std::string folder;
    std::string state;
    bool isServiceRunning = false;
    bool isNewest = false;
};

bool runsService(const Device& device) {
    const auto names = BusClient(device.busAddress()).ownedNames();
    return std::find(names.begin(), names.end(), ids::service) != names.end();
}

/// A watch that cannot be asked any more is listed, too: `off` and `boot` clean it up.
ListedWatch look(const std::filesystem::path& folder) {
    ListedWatch watch{folder.string(), "ended suddenly"};
    try {
        const Device device(folder);
        if (!std::filesystem::exists(device.layout().busConfiguration())) {
            watch.state = "gone";
        } else if (device.isBooted()) {
            watch.isServiceRunning = runsService(device);
            watch.state = "booted";
        }
    } catch (const std::runtime_error&) {
        watch.state = "does not answer";
    }
    return watch;
}

std::vector<ListedWatch> listedWatches() {
    std::vector<ListedWatch> watches;
    for (const auto& folder : Registry::ofUser().watches()) {
        watches.push_back(look(folder));
    }
    if (!watches.empty()) {
        watches.back().isNewest = true;
    }
    return watches;
}

std::string asTable(const std::vector<ListedWatch>& watches) {
    std::vector<std::vector<std::string>> rows;
    rows.reserve(watches.size());
    for (const auto& watch : watches) {
        rows.push_back({watch.folder, watch.state, watch.isServiceRunning ? "service runs" : "service does not run",
                        watch.isNewest ? "newest" : ""});
    }
    return textTable(rows);
}

std::string asJson(const std::vector<ListedWatch>& watches) {
    auto list = nlohmann::ordered_json::array();
    for (const auto& watch : watches) {
        list.push_back({{"watch", watch.folder},
                        {"state", watch.state},
                        {"serviceRunning", watch.isServiceRunning},
                        {"newest", watch.isNewest}});
    }
    return jsonText(list, 2) + "\n";
}

} // namespace

void addListCommand(CLI::App& program) {
    auto* command = program.add_subcommand("ls", "List the watches that were booted and not switched off");
    auto isJson = std::make_shared<bool>(false);
    command->add_flag("--json", *isJson, "A JSON array instead of a table");
    command->footer("The last one is the newest, which commands mean unless another is named.\n"
                    "Example:\n  deskwatch ls");
    command->callback([isJson] {
        const auto watches = listedWatches();
        std::cout << (*isJson ? asJson(watches) : asTable(watches));
    });
}

} // namespace deskwatch
