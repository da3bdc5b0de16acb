#include <iostream>
#include <memory>

#include "commands.h"
#include "explain/explanation.h"
#include "session/observer.h"
#include "status/device_status.h"

namespace deskwatch {
namespace {

DeviceFacts readFacts(const CommonOptions& common) {
    return deviceFacts(readStatus(DeviceSession(chosenDevice(common), observerId)));
}

} // namespace

void addExplainCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("explain", "Show where the value of each setting comes from");
    auto isJson = std::make_shared<bool>(false);
    command->add_flag("--json", *isJson, "One JSON object instead of tables");
    command->footer("Starts nothing and changes nothing.\nExample:\n  deskwatch explain");
    command->callback([&common, isJson] {
        const auto explanation = explain(readFacts(common));
        std::cout << (*isJson ? explanationJson(explanation) : explanationText(explanation));
    });
}

} // namespace deskwatch
