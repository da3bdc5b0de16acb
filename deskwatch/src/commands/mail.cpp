#include <algorithm>
#include <cctype>
#include <iostream>
#include <memory>

#include "accounts/account_store.h"
#include "actors/mail_application.h"
#include "actors/message_file.h"
#include "actors/refusal.h"
#include "commands.h"
#include "commands/completion.h"
#include "device/application_ids.h"
#include "device/plain_text.h"
#include "text/input_file.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

/// The service takes the digits that a text begins with, and their lowest 32 bits, for the number of the account to
/// delete. So a slip of the finger must not reach it.
std::string checkAccountNumber(const std::string& text) {
    const auto digits = text.find_first_not_of('-');
    const bool looksLikeOne = digits < 2 && std::isdigit(static_cast<unsigned char>(text[digits])) != 0;
    return wholeNumber(text) || !looksLikeOne ? "" : text + " is not an account's number, which is 1 to 2147483647";
}

void addPolicyCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("policy", "Send message files, in order, as policy updates");
    auto files = std::make_shared<std::vector<std::string>>();
    auto isRaw = std::make_shared<bool>(false);
    command->add_option("FILE", *files, "Message files; - is standard input")->required();
    command->add_flag("--raw", *isRaw, "Send the files as they are, even if they are not valid JSON");
    command->footer("Example:\n  deskwatch mail policy samples/hardened.json");
    command->callback([&common, files, isRaw] {
        std::vector<SourcedRequest> sourced;
        for (const auto& file : *files) {
            const auto text = readMessageAndWarn(file, *isRaw ? Check::None : Check::ValidJson);
            sourced.push_back({inputName(file), requests::policyUpdate(text)});
        }
        sendAndTell(common, sourced);
    });
}

void warnOfServer(const Device& device, const std::string& account) {
    const auto connected = AccountStore(device.layout()).ids();
    if (std::find(connected.begin(), connected.end(), wholeNumber(account)) != connected.end()) {
        std::cerr << "warning: account " << account
                  << " is still connected to its server: mail refresh gives the watch "
                  << "its policy again; mail disconnect " << account << " forgets it\n";
    }
}

void addDeleteCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("delete", "Tell the service that an account was deleted");
    auto id = std::make_shared<std::string>();
    command->add_option("ID", *id, "The account's number")->required()->check(checkAccountNumber, "");
    command->footer("Example:\n  deskwatch mail delete 2");
    command->callback([&common, id] {
        sendAndTell(common, {{"", {requests::deleteAccount, *id}}});
        warnOfServer(chosenDevice(common), *id);
    });
}

void addSendCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("send", "Send any request");
    auto request = std::make_shared<Request>();
    command->add_option("REQ", request->name, "The request's name")
        ->required()
        ->check(proposing({requests::all.begin(), requests::all.end()}));
    command->add_option("TEXT", request->argument, "Its argument (default: empty)");
    command->footer("Example:\n  deskwatch mail send chk_password_policy");
    command->callback([&common, request] { sendAndTell(common, {{"", *request}}); });
}

/// A message that is in files and goes out as a policy update when it is of the right kind.
struct Kind {
    const char* command;
    const char* description;
    const char* id;
    const char* example;
};

void addKindCommand(CLI::App& mail, const CommonOptions& common, const Kind& kind) {
    auto* command = mail.add_subcommand(kind.command, kind.description);
    auto files = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *files, std::string("Message files of the kind ") + kind.id + "; - is standard input")
        ->required();
    command->footer(std::string("Example:\n  deskwatch mail ") + kind.command + " " + kind.example);
    command->callback([&common, files, id = std::string(kind.id)] {
        std::vector<SourcedRequest> sourced;
        for (const auto& file : *files) {
            auto text = readMessageOfKind(file, id);
            warnOf(file, text);
            sourced.push_back({inputName(file), requests::policyUpdate(std::move(text))});
        }
        sendAndTell(common, sourced);
    });
}

/// A request that is always the same.
struct FixedRequest {
    const char* command;
    const char* description;
    Request request;
};

void addFixedCommand(CLI::App& mail, const CommonOptions& common, const FixedRequest& fixed) {
    auto* command = mail.add_subcommand(fixed.command, fixed.description);
    command->footer(std::string("Example:\n  deskwatch mail ") + fixed.command);
    command->callback([&common, request = fixed.request] { sendAndTell(common, {{"", request}}); });
}

} // namespace

void sendAndTell(const CommonOptions& common, const std::vector<SourcedRequest>& sourced) {
    std::vector<Request> requests;
    requests.reserve(sourced.size());
    for (const auto& entry : sourced) {
        if (const auto reason = whyTooLong(entry.request); !entry.source.empty() && !reason.empty()) {
            throw std::runtime_error(entry.source + ": " + reason);
        }
        requests.push_back(entry.request);
    }
    std::vector<std::string> refusals;
    std::size_t refused = 0;
    const DeviceSession session(chosenDevice(common), ids::mail);
    sendAsMailApplication(session, requests, [&, entry = sourced.begin()](const RequestOutcome& outcome) mutable {
        const auto& source = entry++->source;
        const std::string prefix = source.empty() ? "" : source + ": ";
        for (const auto& line : outcome.done()) {
            std::cout << prefix << line << '\n';
        }
        std::cout << std::flush; // a failure shows at the end: what is to be sent is sent
        for (const auto& line : outcome.notDone()) {
            refusals.push_back(prefix + line);
        }
        refused += outcome.isDone() ? 0 : 1;
        if (sourced.size() > 1) {
            std::for_each(refusals.begin(), refusals.end(), [](const auto& line) { std::cerr << line << '\n'; });
            refusals.clear();
        }
    });
    if (refused > 0) {
        throw Refusal(sourced.size() == 1 ? joined(refusals, "\n  ")
                                          : "not all was done for " + std::to_string(refused) + " of " +
                                                std::to_string(sourced.size()) + " messages");
    }
}

void addMailCommand(CLI::App& program, const CommonOptions& common) {
    auto* command = program.add_subcommand("mail", "Act as the watch's mail application");
    command->require_subcommand(1);
    addPolicyCommand(*command, common);
    addKindCommand(
        *command, common,
        {"accounts", "Send the accounts and their policies", "email-account-info", "samples/account-info.json"});
    addKindCommand(*command, common,
                   {"init", "Answer the service's start with the accounts and their policies", "email-init-res",
                    "samples/init-response.json"});
    addDeleteCommand(*command, common);
    addFixedCommand(*command, common,
                    {"check-password", "Ask for the lock that the policies require", {requests::checkPassword, ""}});
    addFixedCommand(
        *command, common,
        {"check-encryption", "Ask for the encryption that the policies require", {requests::checkEncryption, ""}});
    addFixedCommand(*command, common, {"wipe", "Wipe the watch's internal storage at once", requests::remoteWipe()});
    addSendCommand(*command, common);
    addMailServerCommands(*command, common);
    command->footer(
        "Returns when the service has handled the request and tells what became of it; fails with 3 and the\n"
        "reason when the watch did not do it.\n"
        "Example:\n  deskwatch mail policy samples/hardened.json");
}

} // namespace deskwatch
