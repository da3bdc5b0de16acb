#include <unistd.h>

#include <iostream>
#include <memory>
#include <optional>

#include "commands.h"
#include "commands/observed_watch.h"
#include "commands/output.h"
#include "device/watch_end.h"
#include "session/observer.h"
#include "status/device_status.h"
#include "status/status_follower.h"

namespace deskwatch {
namespace {

struct StatusOptions {
    bool isJson = false;
    bool isFollowed = false;
};

/// Replaces the previous status by the next: on a terminal by clearing it, elsewhere after an empty line. A status that
/// looks like the previous one is not shown again.
class StatusDisplay {
public:
    explicit StatusDisplay(bool isJson) : isJson_(isJson) {}

    void show(const DeviceStatus& status) {
        first_ = first_.value_or(status);
        const std::string text = isJson_ ? statusJsonLine(status) : statusTables(status, &*first_);
        if (text == shown_) {
            return;
        }
        const bool isTerminal = isatty(STDOUT_FILENO) == 1;
        std::cout << (isJson_ ? "" : isTerminal ? "\x1b[H\x1b[2J" : shown_.empty() ? "" : "\n") << text;
        flushFollowed();
        shown_ = text;
    }

private:
    bool isJson_;
    std::optional<DeviceStatus> first_;
    std::string shown_;
};

void showStatus(const CommonOptions& common, const StatusOptions& options) {
    const auto device = chosenDevice(common);
    if (options.isFollowed) {
        untilWatchEnds(device, [&] {
            const DeviceSession session(device, observerId);
            endWithReader();
            StatusDisplay display(options.isJson);
            followStatus(session, [&](const DeviceStatus& status) { display.show(status); });
        });
        return;
    }
    const auto status = ObservedWatch(device).status();
    std::cout << (options.isJson ? statusJson(status) : statusTables(status));
}

} // namespace

void addStatusCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("status", "Show accounts, settings, keys and launch requests of a watch");
    auto options = std::make_shared<StatusOptions>();
    command->add_flag("--json", options->isJson, "One JSON object instead of tables; with --follow, one for each line");
    command->add_flag("--follow", options->isFollowed,
                      "Show it again after each change, with the first value of what has changed");
    command->footer("A watch that is switched off shows what it keeps. Starts nothing and changes nothing. The last "
                    "column of the accounts is the merged policy.\n"
                    "Example:\n  deskwatch status --json");
    command->callback([&common, options] { showStatus(common, *options); });
}

} // namespace deskwatch
