#include <iostream>
#include <memory>
#include <stdexcept>

#include "c_owners.h"
#include "commands.h"
#include "commands/output.h"
#include "records/log_lines.h"
#include "status/followed_file.h"

namespace deskwatch {
namespace {

struct LogOptions {
    std::string level;
    bool isFollowed = false;
};

void showLog(const CommonOptions& common, const LogOptions& options) {
    const auto file = chosenDevice(common).layout().log();
    if (!std::filesystem::exists(file)) {
        throw std::runtime_error(file.string() + " does not exist: the watch has not been booted yet");
    }
    LogLines lines(options.level.empty() ? std::nullopt : std::optional(options.level.front()));
    FollowedFile log(file, [&](const std::string& text) {
        std::cout << lines.add(text);
        flushFollowed();
    });
    log.read();
    if (options.isFollowed) {
        endWithReader();
        const c::MainLoopOwner loop(g_main_loop_new(nullptr, FALSE));
        g_main_loop_run(loop.get());
    }
}

} // namespace

void addLogCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("log", "Show what the service, the other applications and the bus wrote");
    auto options = std::make_shared<LogOptions>();
    command->add_flag("--follow", options->isFollowed, "Continue with new lines until interrupted");
    command->add_option("--level", options->level, "Show only log lines of this level and higher: V D I W E F")
        ->check(CLI::IsMember({"V", "D", "I", "W", "E", "F"}))
        ->type_name("LEVEL");
    command->footer("Example:\n  deskwatch log --follow --level W");
    command->callback([&common, options] { showLog(common, *options); });
}

} // namespace deskwatch
