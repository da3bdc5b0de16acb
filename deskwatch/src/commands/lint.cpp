#include <iostream>
#include <memory>
#include <vector>

#include "actors/mail_application.h"
#include "actors/message_file.h"
#include "actors/refusal.h"
#include "commands.h"
#include "messages/message_lint.h"
#include "text/input_file.h"
#include "text/json_input.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

std::vector<std::string> remarksOn(const std::string& file) {
    const auto text = readMessageFile(file, Check::None);
    requireJson(inputName(file), text, "");
    auto lines = remarkLines(inputName(file), text);
    if (const auto reason = whyTooLong(requests::policyUpdate(text)); !reason.empty()) {
        lines.insert(lines.begin(), inputName(file) + ":1: " + reason);
    }
    return lines;
}

/// Throws when there are remarks, or a file is not a message, after all files have been checked.
void lint(const std::vector<std::string>& files) {
    std::size_t count = 0;
    std::vector<std::string> failures;
    for (const auto& file : files) {
        try {
            for (const auto& line : remarksOn(file)) {
                std::cout << line << '\n';
                ++count;
            }
        } catch (const std::runtime_error& error) {
            failures.emplace_back(error.what());
        }
    }
    if (count > 0) {
        failures.push_back(counted(count, "remark"));
    }
    if (!failures.empty()) {
        throw std::runtime_error(joined(failures, "\n"));
    }
}

} // namespace

void addLintCommand(CLI::App& program) {
    auto* command = program.add_subcommand("lint", "Check message files for what a sender should not send");
    auto files = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *files, "Message files; - is standard input")->required();
    command->footer(
        "The service takes what it can of any message; this reports what it would read differently. Needs no\n"
        "watch. Fails with 1 when there are remarks.\n"
        "Example:\n  deskwatch lint samples/hardened.json");
    command->callback([files] { lint(*files); });
}

} // namespace deskwatch
