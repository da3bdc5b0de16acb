#include <iostream>
#include <memory>
#include <vector>

#include "commands.h"
#include "forecast/forecast.h"
#include "text/input_file.h"

namespace deskwatch {
namespace {

std::vector<SourcedMessage> readMessages(const std::vector<std::string>& files, Check check) {
    std::vector<SourcedMessage> messages;
    messages.reserve(files.size());
    for (const auto& file : files) {
        messages.push_back({inputName(file), readMessageAndWarn(file, check)});
    }
    return messages;
}

} // namespace

void addWhatifCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("whatif", "Show what would change if these messages arrived");
    auto files = std::make_shared<std::vector<std::string>>();
    auto isJson = std::make_shared<bool>(false);
    auto isRaw = std::make_shared<bool>(false);
    command->add_option("FILE", *files, "Message files, in order; - is standard input")->required();
    command->add_flag("--json", *isJson, "One JSON object instead of tables");
    command->add_flag("--raw", *isRaw, "Take the files as they are, even if they are not valid JSON");
    command->footer("Runs the service on a copy of the watch and compares. The watch itself is not touched.\n"
                    "A fault with --nth counts the calls on the copy.\n"
                    "Example:\n  deskwatch whatif samples/strictest.json");
    command->callback([&common, files, isJson, isRaw] {
        const auto messages = readMessages(*files, *isRaw ? Check::None : Check::ValidJson);
        const auto result = forecast(chosenDevice(common), messages);
        std::cout << (*isJson ? forecastJson(result) : forecastText(result));
    });
}

} // namespace deskwatch
