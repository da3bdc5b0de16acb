#include <iostream>
#include <memory>

#include "commands.h"
#include "commands/observed_watch.h"
#include "commands/output.h"
#include "explain/explanation.h"
#include "session/observer.h"
#include "status/device_status.h"
#include "status/status_follower.h"

namespace deskwatch {
namespace {

struct ExplainOptions {
    bool isJson = false;
    bool isFollowed = false;
};

std::string shown(const DeviceStatus& status, const ExplainOptions& options) {
    const auto explanation = explain(deviceFacts(status));
    return !options.isJson      ? explanationText(explanation)
           : options.isFollowed ? explanationJsonLine(explanation)
                                : explanationJson(explanation);
}

/// Again after each change that makes a difference.
[[noreturn]] void followExplanation(const DeviceSession& session, const ExplainOptions& options) {
    endWithReader();
    std::string last;
    followStatus(session, [&](const DeviceStatus& status) {
        const auto text = shown(status, options);
        if (text != last) {
            std::cout << (last.empty() || options.isJson ? "" : "\n") << text;
            flushFollowed();
            last = text;
        }
    });
}

void showExplanation(const CommonOptions& common, const ExplainOptions& options) {
    const auto device = chosenDevice(common);
    if (options.isFollowed) {
        followExplanation(DeviceSession(device, observerId), options);
    }
    std::cout << shown(ObservedWatch(device).status(), options);
}

} // namespace

void addExplainCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("explain", "Show where the value of each setting comes from");
    auto options = std::make_shared<ExplainOptions>();
    command->add_flag("--json", options->isJson, "One JSON object instead of tables; with --follow, one for each line");
    command->add_flag("--follow", options->isFollowed, "Show it again after each change");
    command->footer("A watch that is switched off is explained by what it keeps. Starts nothing and changes nothing.\n"
                    "Example:\n  deskwatch explain");
    command->callback([&common, options] { showExplanation(common, *options); });
}

} // namespace deskwatch
