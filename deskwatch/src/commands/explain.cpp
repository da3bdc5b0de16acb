#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <vector>

#include "TeskConsumerKeys.h"
#include "actors/message_file.h"
#include "commands.h"
#include "explain/arriving_message.h"
#include "explain/explanation.h"
#include "explain/forecast.h"
#include "session/observer.h"
#include "status/device_status.h"

namespace deskwatch {
namespace {

const Value* find(const std::vector<NamedValue>& values, const std::string& name) {
    const auto found =
        std::find_if(values.begin(), values.end(), [&name](const NamedValue& value) { return value.name == name; });
    return found != values.end() ? &found->value : nullptr;
}

template <typename Type>
std::optional<Type> read(const std::vector<NamedValue>& values, const std::string& name) {
    const auto* value = std::get_if<Type>(find(values, name));
    return value != nullptr ? std::optional<Type>(*value) : std::nullopt;
}

DeviceFacts deviceFacts(const DeviceStatus& status) {
    DeviceFacts facts;
    facts.accounts = policyRecords(status.accounts);
    facts.settings = status.settings;
    facts.lockType = read<int>(status.keys, TeskConsumerKeys::lockType).value_or(0);
    facts.country = read<std::string>(status.keys, TeskConsumerKeys::countryIso);
    facts.cryptoState = read<std::string>(status.keys, TeskConsumerKeys::cryptoState);
    facts.isTutorialShown = read<int>(status.keys, TeskConsumerKeys::tutorialInProgress).value_or(0) != 0;
    facts.isServiceRunning = status.isServiceRunning;
    return facts;
}

DeviceFacts readFacts(const CommonOptions& common) {
    return deviceFacts(readStatus(DeviceSession(chosenDevice(common), observerId)));
}

std::vector<Arrival> readArrivals(const std::vector<std::string>& files, Check check) {
    // The service's code logs while it reads, which is no output of this program.
    setenv("DLOG_LEVEL", "S", 1);
    std::vector<Arrival> arrivals;
    arrivals.reserve(files.size());
    for (const auto& file : files) {
        arrivals.push_back(readArrival(file, readMessageFile(file, check)));
    }
    return arrivals;
}

} // namespace

void addExplainCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("explain", "Say for every setting why it is what it is");
    auto isJson = std::make_shared<bool>(false);
    command->add_flag("--json", *isJson, "One JSON object instead of tables");
    command->footer("Starts nothing and changes nothing.\nExample:\n  deskwatch explain");
    command->callback([&common, isJson] {
        const auto explanation = explain(readFacts(common));
        std::cout << (*isJson ? explanationJson(explanation) : explanationText(explanation));
    });
}

void addWhatifCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("whatif", "Say what would change if these messages arrived");
    auto files = std::make_shared<std::vector<std::string>>();
    auto isJson = std::make_shared<bool>(false);
    auto isRaw = std::make_shared<bool>(false);
    command->add_option("FILE", *files, "Message files, in order")->required();
    command->add_flag("--json", *isJson, "One JSON object instead of tables");
    command->add_flag("--raw", *isRaw, "Take the files as they are, JSON or not");
    command->footer("Starts nothing and changes nothing.\nExample:\n  deskwatch whatif samples/strictest.json");
    command->callback([&common, files, isJson, isRaw] {
        const auto arrivals = readArrivals(*files, *isRaw ? Check::None : Check::Json);
        const auto result = forecast(readFacts(common), arrivals);
        std::cout << (*isJson ? forecastJson(result) : forecastText(result));
    });
}

} // namespace deskwatch
