#include <iostream>
#include <memory>
#include <vector>

#include "actors/message_file.h"
#include "actors/refusal.h"
#include "commands.h"
#include "messages/message_lint.h"
#include "text/input_file.h"

namespace deskwatch {
namespace {

/// Throws when a file has remarks, after all files have been checked.
void lint(const std::vector<std::string>& files) {
    std::size_t count = 0;
    for (const auto& file : files) {
        for (const auto& line : remarkLines(inputName(file), readMessageFile(file, Check::ValidJson))) {
            std::cout << line << '\n';
            ++count;
        }
    }
    if (count > 0) {
        throw std::runtime_error(std::to_string(count) + (count == 1 ? " remark" : " remarks"));
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
