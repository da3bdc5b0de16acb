#include <iostream>
#include <memory>
#include <optional>
#include <vector>

#include "TeskConsumerKeys.h"
#include "commands.h"
#include "explain/explanation.h"
#include "session/observer.h"
#include "status/device_status.h"

namespace deskwatch {
namespace {

std::optional<std::string> textOf(const std::vector<NamedValue>& values, const std::string& name) {
    for (const auto& value : values) {
        const auto* text = value.name == name ? std::get_if<std::string>(&value.value) : nullptr;
        if (text != nullptr) {
            return *text;
        }
    }
    return std::nullopt;
}

DeviceFacts deviceFacts(const DeviceStatus& status) {
    DeviceFacts facts;
    facts.accounts = policyRecords(status.accounts);
    facts.settings = status.settings;
    facts.country = textOf(status.keys, TeskConsumerKeys::countryIso);
    facts.cryptoState = textOf(status.keys, TeskConsumerKeys::cryptoState);
    return facts;
}

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
