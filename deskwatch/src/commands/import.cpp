#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>

#include "actors/refusal.h"
#include "commands.h"
#include "commands/output.h"
#include "explain/device_facts.h"
#include "forecast/forecast.h"
#include "policy_files/policy_file.h"
#include "provisioning/provisioning_import.h"
#include "records/policy_database.h"
#include "text/input_file.h"
#include "text/output_file.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

struct ImportOptions {
    std::string file;
    std::string output;
    std::string policy;
    ImportTarget target{1, "imported@example.com", false};
    bool isJson = false;
    bool isWhatif = false;
    bool isSend = false;
    /// Whether the account's name was given.
    bool isNamed = false;
};

/// A client that is told to wipe looks at no policy. Names the command that obeys, which must never do more than the
/// order demands.
void refuseBesideAnOrder(const std::string& name, const PolicyFile& content, int account) {
    const std::map<ServerNotice::Kind, std::string> obeying{
        {ServerNotice::Kind::Wipe, "deskwatch mail wipe"},
        {ServerNotice::Kind::AccountWipe, "deskwatch mail delete " + std::to_string(account)}};
    for (const auto& notice : content.notices) {
        if (const auto command = obeying.find(notice.kind); command != obeying.end()) {
            throw std::runtime_error(noticeText(name, notice) +
                                     "; this sends policies only, and what obeys is: " + command->second);
        }
    }
}

/// What is misspelt is lost, and the watch would be weaker than its administrator thinks.
void refuseSlips(const std::string& name, const ProvisioningImport& import) {
    for (const auto& entry : import.elements) {
        if (isSlip(entry.element)) {
            throw Refusal(placeIn(name, entry.element.line) + ": " + entry.element.name + " is " + entry.remark +
                          " Nothing is sent");
        }
    }
}

/// The name under which the watch has the account, so that its policy does not rename it; else the usual one.
std::string accountName(const Device& device, const ImportTarget& target) {
    try {
        const auto accounts = policyRecords(readStoredAccounts(policyDatabase(device.layout())));
        const auto stored = std::find_if(accounts.begin(), accounts.end(),
                                         [&](const auto& account) { return account->accountId == target.account; });
        return stored != accounts.end() && !(*stored)->accountName.empty() ? (*stored)->accountName : target.name;
    } catch (const std::runtime_error&) {
        return target.name; // whether the watch can use its accounts is for the watch to tell
    }
}

ProvisioningImport importOf(const std::string& name, const PolicyFile& content, const ImportOptions& options) {
    auto notices = noticeLines(name, content);
    if (content.policies.empty() && !notices.empty()) {
        throw std::runtime_error(name + " brings no policy\n" + joined(notices, "\n"));
    }
    const auto& policy = chosenPolicy(name, content, options.policy);
    auto target = options.target;
    target.keepsLimits = target.keepsLimits || policy.isMessage;
    auto result = importProvisioning(name, policy.elements, target);
    result.notices = std::move(notices);
    return result;
}

void import(const CommonOptions& common, ImportOptions options) {
    if (!options.isNamed && (options.isWhatif || options.isSend)) {
        options.target.name = accountName(chosenDevice(common), options.target);
    }
    const auto name = inputName(options.file);
    const auto content = readPolicyFile(name, readInput(options.file));
    const auto result = importOf(name, content, options);
    if (!options.output.empty()) {
        writeOutput(options.output, result.message);
    } else if (!options.isWhatif && !options.isSend) {
        std::cout << result.message;
        flushOutput();
    }
    std::cerr << (options.isJson ? importJson(name, result) : importText(name, result));
    if (options.isWhatif) {
        const auto changes = forecast(chosenDevice(common), {{name, result.message}});
        std::cout << (options.isJson ? forecastJson(changes) : forecastText(changes));
    } else if (options.isSend) {
        refuseBesideAnOrder(name, content, options.target.account);
        refuseSlips(name, result);
        sendAndTell(common, {{name, requests::policyUpdate(result.message)}});
    }
}

} // namespace

void addImportCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("import", "Turn an administrator's policy into a policy update");
    auto options = std::make_shared<ImportOptions>();
    command->add_option("FILE", options->file, "A policy in any of the formats below; - is standard input")->required();
    command->add_option("--policy", options->policy, "Which policy of a file that has several")
        ->check(checkNotEmpty, "")
        ->type_name("NAME");
    command->add_option("--account", options->target.account, "The account's number (default: 1)")
        ->check(checkPositive, "")
        ->type_name("ID");
    auto* const name = command
                           ->add_option("--name", options->target.name,
                                        "The account's name (default: the stored one, else imported@example.com)")
                           ->type_name("NAME");
    command
        ->add_option("-o,--output", options->output,
                     "File for the message (default: standard output, unless --whatif or --send)")
        ->type_name("OUT");
    command->add_flag("--keep-limits", options->target.keepsLimits,
                      "Keep password limits even if no password is required; the protocol ignores them");
    auto* whatif =
        command->add_flag("--whatif", options->isWhatif, "Show what would change on the watch, as whatif does");
    command->add_flag("--send", options->isSend, "Send it to the watch as a policy update")->excludes(whatif);
    command->add_flag("--json", options->isJson, "The report as one JSON object");
    command->footer(
        "Formats, known by their content: an EASProvisionDoc in XML or WBXML (bytes, hexadecimal, a dump, base64),\n"
        "alone or in its Provision element; Get-MobileDeviceMailboxPolicy | Format-List, ConvertTo-Json or "
        "Export-Csv;\n"
        "policies.ini of Z-Push; a policy of grommunio; a message for the watch; a trace of mail connect.\n"
        "The report on what the watch does with each element goes to standard error.\n"
        "Example:\n  deskwatch import samples/policies/format-list.txt --whatif\n"
        "  deskwatch import samples/policies/policies.ini --policy Hardened --send --account 2");
    command->callback([&common, options, name] {
        options->isNamed = name->count() > 0;
        import(common, *options);
    });
}

} // namespace deskwatch
