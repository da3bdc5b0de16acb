#include <iostream>
#include <memory>

#include "actors/refusal.h"
#include "check/evidence.h"
#include "check/findings.h"
#include "commands.h"
#include "commands/observed_watch.h"

namespace deskwatch {
namespace {

struct CheckOptions {
    std::string copy;
    bool isJson = false;
};

Evidence evidenceOf(const CommonOptions& common, const CheckOptions& options) {
    if (!options.copy.empty()) {
        return readEvidence(std::filesystem::path(options.copy));
    }
    const ObservedWatch watch(chosenDevice(common));
    return readEvidence(watch.session(), watch.files());
}

} // namespace

void addCheckCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("check", "Say where the watch is weaker than its accounts want, and why");
    auto options = std::make_shared<CheckOptions>();
    command
        ->add_option("--copy", options->copy,
                     "Instead of a watch, a folder copied from a device: .tesk.db, settings.json and log")
        ->type_name("DIR");
    command->add_flag("--json", options->isJson, "One JSON object instead of text");
    command->footer("A watch that is switched off is checked by what it keeps. Starts nothing and changes nothing. "
                    "settings.json is what status --json writes; of a device its\n"
                    "\"settings\" and \"keys\" suffice. Exit status 3 when something is found.\n"
                    "Example:\n  deskwatch check");
    command->callback([&common, options] {
        const auto evidence = evidenceOf(common, *options);
        const auto findings = findingsOf(evidence);
        std::cout << (options->isJson ? findingsJson(findings, evidence.wipes)
                                      : findingsText(findings, evidence.wipes));
        if (!findings.empty()) {
            throw Refusal("the watch is weaker than its accounts want");
        }
    });
}

} // namespace deskwatch
