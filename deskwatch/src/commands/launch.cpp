#include <memory>

#include "actors/message_file.h"
#include "commands.h"
#include "commands/completion.h"
#include "device/application_ids.h"
#include "device/plain_text.h"
#include "session/launch_request.h"

namespace deskwatch {
namespace {

struct LaunchOptions {
    std::string application;
    std::vector<std::string> entries;
};

/// KEY=VALUE, or KEY=@FILE for the content of a file.
std::pair<std::string, std::string> parseEntry(const std::string& text) {
    const auto equals = text.find('=');
    if (equals == 0 || equals == std::string::npos) {
        throw CLI::ValidationError(text + " is not KEY=VALUE");
    }
    const auto given = text.substr(equals + 1);
    auto value = startsWith(given, "@") ? readMessageFile(given.substr(1), Check::None) : given;
    if (value.empty()) {
        throw CLI::ValidationError(text + ": the platform refuses an empty value; leave " + text.substr(0, equals) +
                                   " out");
    }
    return {text.substr(0, equals), std::move(value)};
}

std::vector<std::string> knownApplications() {
    std::vector<std::string> known(ids::companions.begin(), ids::companions.end());
    known.emplace_back(ids::service);
    return known;
}

} // namespace

void addLaunchCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("launch", "Launch an application of the watch, as its home screen does");
    auto options = std::make_shared<LaunchOptions>();
    command->add_option("APPLICATION", options->application, "The application's id")
        ->required()
        ->check(proposing(knownApplications(), {checkNotEmpty, ""}));
    command->add_option("KEY=VALUE", options->entries,
                        "Extra data of the request; KEY=@FILE takes the value from a file");
    command->footer(std::string("Example:\n  deskwatch launch ") + ids::service);
    command->callback([&common, options] {
        ExtraData extraData;
        for (const auto& entry : options->entries) {
            extraData.push_back(parseEntry(entry));
        }
        suggestWhenUnknown(options->application, knownApplications(),
                           [&] { launchFromHome(chosenDevice(common), options->application, extraData); });
    });
}

} // namespace deskwatch
