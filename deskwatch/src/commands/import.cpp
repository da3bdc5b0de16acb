#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "commands.h"
#include "commands/output.h"
#include "policy_files/policy_file.h"
#include "provisioning/provisioning_import.h"
#include "text/input_file.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

struct ImportOptions {
    std::string file;
    std::string output;
    ImportTarget target{1, "imported@example.com", false};
    bool isJson = false;
};

void writeMessage(const std::string& output, const std::string& message) {
    if (output.empty()) {
        std::cout << message;
        flushOutput();
        return;
    }
    std::ofstream stream(output, std::ios::binary | std::ios::trunc);
    stream << message << std::flush;
    if (!stream) {
        throw std::runtime_error("cannot write " + output + ": " + std::strerror(errno));
    }
}

/// What the file says beside its policies, for the reader.
std::vector<std::string> noticesOf(const std::string& name, const PolicyFile& content) {
    std::vector<std::string> lines;
    for (const auto& notice : content.notices) {
        lines.push_back(noticeText(name, notice));
    }
    for (const auto& remark : content.remarks) {
        lines.push_back(std::string(name).append(": ").append(remark));
    }
    return lines;
}

void import(const ImportOptions& options) {
    const auto name = inputName(options.file);
    const auto content = readPolicyFile(name, readInput(options.file));
    auto notices = noticesOf(name, content);
    if (content.policies.empty() && !notices.empty()) {
        throw std::runtime_error(name + " brings no policy\n" + joined(notices, "\n"));
    }
    auto result = importProvisioning(name, chosenPolicy(name, content, "").elements, options.target);
    result.notices = std::move(notices);
    writeMessage(options.output, result.message);
    std::cerr << (options.isJson ? importJson(name, result) : importText(name, result));
}

} // namespace

void addImportCommand(CLI::App& program) {
    auto* command = program.add_subcommand("import", "Turn an Exchange provisioning document into a policy update");
    auto options = std::make_shared<ImportOptions>();
    command
        ->add_option(
            "FILE", options->file,
            "XML with an EASProvisionDoc element, alone or inside a Provision element, or a trace of mail connect")
        ->required();
    command->add_option("--account", options->target.account, "The account's number (default: 1)")
        ->check(checkPositive, "")
        ->type_name("ID");
    command->add_option("--name", options->target.name, "The account's name (default: imported@example.com)")
        ->type_name("NAME");
    command->add_option("-o,--output", options->output, "File for the message (default: standard output)")
        ->type_name("OUT");
    command->add_flag("--keep-limits", options->target.keepsLimits,
                      "Keep password limits even if no password is required; the protocol ignores them");
    command->add_flag("--json", options->isJson, "The report as one JSON object");
    command->footer("The report on what the watch does with each element goes to standard error.\n"
                    "Example:\n  deskwatch import samples/provision-hardened.xml -o policy.json");
    command->callback([options] { import(*options); });
}

} // namespace deskwatch
