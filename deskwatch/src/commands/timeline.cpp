#include "recording/timeline.h"

#include <iostream>
#include <memory>

#include "commands.h"
#include "commands/output.h"
#include "device/watch_end.h"

namespace deskwatch {
namespace {

struct TimelineOptions {
    bool isFollowed = false;
    bool isNew = false;
    bool isJson = false;
};

void showTimeline(const CommonOptions& common, const TimelineOptions& options) {
    if (options.isFollowed) {
        endWithReader();
    }
    const auto device = chosenDevice(common);
    const auto tell = [&] {
        tellTimeline(device, {!options.isNew, options.isFollowed}, [&](const TimelineEntry& entry) {
            std::cout << (options.isJson ? timelineJson(entry) : timelineText(entry));
            if (options.isFollowed) {
                flushFollowed();
            }
        });
    };
    options.isFollowed ? untilWatchEnds(device, tell) : tell();
}

} // namespace

void addTimelineCommand(CLI::App& program, const CommonOptions& common) {
    auto* command =
        program.add_subcommand("timeline", "Show what happened: requests, effects, keys, launches, lock, log");
    auto options = std::make_shared<TimelineOptions>();
    auto* follow = command->add_flag("--follow", options->isFollowed,
                                     "Continue with what happens, until interrupted or the watch is switched off");
    command->add_flag("--new", options->isNew, "Leave out what happened before")->needs(follow);
    command->add_flag("--json", options->isJson, "One JSON object for each entry");
    command->footer(
        "Of what happened before, only the log is known, which has the wearer's use of the lock, and what the mail\n"
        "application received. Start it with --follow beforehand to see requests, effects, keys and launches. Of a\n"
        "watch that is switched off it is the log.\n"
        "Example:\n  deskwatch timeline --follow");
    command->callback([&common, options] { showTimeline(common, *options); });
}

} // namespace deskwatch
