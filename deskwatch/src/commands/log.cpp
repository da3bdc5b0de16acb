#include <fstream>
#include <iostream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "c_owners.h"
#include "commands.h"
#include "commands/output.h"
#include "device/bus_client.h"
#include "device/watch_end.h"
#include "records/log_lines.h"
#include "status/followed_file.h"

namespace deskwatch {
namespace {

struct LogOptions {
    std::string level;
    bool isFollowed = false;
    bool isOfBoot = false;
};

/// Where the last boot begins; the start of the log when that is not known any more.
std::streamoff beginOfBoot(const DeviceLayout& layout) {
    std::streamoff begin = 0;
    std::ifstream(layout.logOfBoot()) >> begin;
    std::error_code none; // who reads the log tells that it is not a file
    const auto size = std::filesystem::file_size(layout.log(), none);
    return !none && begin <= static_cast<std::streamoff>(size) ? begin : 0;
}

/// Until the watch is switched off; for ever when it is off already.
void follow(const Device& device, FollowedFile& log) {
    endWithReader();
    const bool isBooted = device.isBooted(); // the reader may take his time
    log.read();
    const c::MainLoopOwner loop(g_main_loop_new(nullptr, FALSE));
    std::optional<BusClient> bus;
    if (isBooted) {
        bus.emplace(device.busAddress(), device.patience());
        bus->whenClosed([&] { g_main_loop_quit(loop.get()); });
    }
    g_main_loop_run(loop.get());
}

void showLog(const CommonOptions& common, const LogOptions& options) {
    const auto device = chosenDevice(common);
    const auto file = device.layout().log();
    if (!std::filesystem::exists(file)) {
        throw std::runtime_error(file.string() + " does not exist: the watch has not been booted yet");
    }
    LogLines lines(options.level.empty() ? std::nullopt : std::optional(options.level.front()));
    FollowedFile log(
        file,
        [&](const std::string& text) {
            std::cout << lines.add(text);
            flushFollowed();
        },
        options.isOfBoot ? beginOfBoot(device.layout()) : 0);
    if (options.isFollowed) {
        untilWatchEnds(device, [&] { follow(device, log); });
    }
    log.read(); // or what was written last
}

} // namespace

void addLogCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("log", "Show what the service, the other applications and the bus wrote");
    auto options = std::make_shared<LogOptions>();
    command->add_flag("--follow", options->isFollowed,
                      "Continue with new lines until interrupted, or the watch is switched off");
    command->add_flag("--boot", options->isOfBoot, "Show only what was written since the last boot");
    command->add_option("--level", options->level, "Show only log lines of this level and higher: V D I W E F")
        ->check(oneOf({"V", "D", "I", "W", "E", "F"}))
        ->type_name("LEVEL");
    command->footer("Lines of the platform's log begin with their time in UTC.\n"
                    "Example:\n  deskwatch log --follow --level W");
    command->callback([&common, options] { showLog(common, *options); });
}

} // namespace deskwatch
