#include <iostream>
#include <memory>

#include "commands.h"
#include "recording/recorder.h"
#include "text/output_file.h"

namespace deskwatch {

void addRecordCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("record", "Record what the service receives and what it does");
    auto options = std::make_shared<RecordOptions>();
    command->add_option("FILE", options->file, "The recording, a line of JSON for each event; - for standard output")
        ->required();
    command->add_flag("--anonymise", options->isAnonymous, "Replace the names of accounts");
    command->add_flag("--force", options->isForced, "Replace FILE when it exists");
    command->footer("Runs until it is interrupted or the watch is switched off. The first line holds the state of the\n"
                    "watch: its stored accounts, settings, keys and faults.\n"
                    "Example:\n  deskwatch record story.jsonl");
    command->callback([&common, options] {
        record(chosenDevice(common), *options, [&options] {
            std::cerr << "recording to " << outputName(options->file) << "; ^C or deskwatch off ends it\n";
        });
    });
}

} // namespace deskwatch
