#include <iostream>
#include <memory>
#include <stdexcept>

#include "commands.h"
#include "device/temporary_device.h"
#include "recording/recording.h"
#include "recording/replay.h"

namespace deskwatch {
namespace {

struct ReplayOptions {
    std::string file;
    std::string service;
};

void replayOnFreshDevice(const ReplayOptions& options) {
    const auto recording = readRecording(options.file);
    const auto self = std::filesystem::read_symlink("/proc/self/exe");
    const auto service =
        options.service.empty() ? self.parent_path() / "tesk-agent" : std::filesystem::absolute(options.service);
    const TemporaryDevice device;
    device->boot(standardApplications(service, {self.string(), "companion"}), recording.device);
    const auto outcome = replay(*device, recording);
    if (outcome.difference) {
        throw std::runtime_error(std::to_string(outcome.equal) + " effects are equal; then " + options.file + ", " +
                                 *outcome.difference);
    }
    std::cout << "all " << outcome.equal << " effects are equal\n";
}

} // namespace

void addRecordCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("record", "Record what the service receives and what it does");
    auto file = std::make_shared<std::string>();
    command->add_option("FILE", *file, "The recording, a line of JSON for each event")->required();
    command->footer(
        "Runs until it is interrupted or the watch is switched off. The watch must not have a stored account.\n"
        "The effects of the commands event, bus and fault are not recorded.\n"
        "Example:\n  deskwatch record story.jsonl");
    command->callback([&common, file] { record(chosenDevice(common), *file); });
}

void addReplayCommand(CLI::App& program) {
    auto* command = program.add_subcommand("replay", "Replay a recording on a fresh watch and compare every effect");
    auto options = std::make_shared<ReplayOptions>();
    command->add_option("FILE", options->file, "The recording")->required();
    command->add_option("--service", options->service, "Program of the service (default: tesk-agent beside deskwatch)")
        ->type_name("PATH");
    command->footer("Exits with 1 and shows the first difference when an effect differs.\nExample:\n  deskwatch replay "
                    "story.jsonl");
    command->callback([options] { replayOnFreshDevice(*options); });
}

} // namespace deskwatch
