#include "replay/replay.h"

#include <glib.h>

#include <iostream>
#include <memory>
#include <stdexcept>

#include "c_owners.h"
#include "commands.h"
#include "device/temporary_device.h"
#include "text/input_file.h"

namespace deskwatch {
namespace {

struct ReplayOptions {
    std::string file;
    std::string service;
    bool isUpdated = false;
};

/// Replaces the file in one step.
void rewrite(const std::string& file, const std::string& text) {
    GError* error = nullptr;
    if (g_file_set_contents(file.c_str(), text.data(), static_cast<gssize>(text.size()), &error) == FALSE) {
        throw std::runtime_error("cannot write " + file + ": " + c::takeMessage(error));
    }
}

void replayOnFreshDevice(const ReplayOptions& options) {
    const auto recording = readRecording(options.file);
    const auto self = std::filesystem::read_symlink("/proc/self/exe");
    const auto service =
        options.service.empty() ? self.parent_path() / "tesk-agent" : std::filesystem::absolute(options.service);
    const TemporaryDevice device;
    const auto outcome = replay(*device, standardApplications(service, {self.string(), "companion"}), recording);
    if (!outcome.difference) {
        std::cout << "all " << outcome.equal << " effects are equal\n";
        return;
    }
    const auto where = inputName(options.file) + ":" + std::to_string(outcome.difference->line);
    const auto text = differenceText(recording, *outcome.difference);
    if (!options.isUpdated) {
        throw std::runtime_error(where + ": the service does not do what was recorded; " +
                                 std::to_string(outcome.equal) + " effects are equal\n" + text);
    }
    rewrite(options.file, updatedRecording(recording, outcome.happened));
    std::cout << where << ": updated\n" << text;
}

} // namespace

void addReplayCommand(CLI::App& program) {
    auto* command = program.add_subcommand("replay", "Replay a recording on a fresh watch and compare every effect");
    auto options = std::make_shared<ReplayOptions>();
    command->add_option("FILE", options->file, "The recording; - for standard input")->required();
    command->add_option("--service", options->service, "Program of the service (default: tesk-agent beside deskwatch)")
        ->type_name("PATH");
    command->add_flag("--update", options->isUpdated, "Rewrite the effects in the file as they are now");
    command->footer("Exits with 1 and shows the first difference when an effect differs.\nExample:\n  deskwatch replay "
                    "story.jsonl");
    command->callback([options] {
        if (options->isUpdated && options->file == standardInput) {
            throw CLI::ArgumentMismatch("--update needs a file, not standard input");
        }
        replayOnFreshDevice(*options);
    });
}

} // namespace deskwatch
