#include <memory>

#include "actors/mail_application.h"
#include "actors/message_file.h"
#include "commands.h"

namespace deskwatch {
namespace {

void addPolicyCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("policy", "Send message files, in order, as policy updates");
    auto files = std::make_shared<std::vector<std::string>>();
    auto isRaw = std::make_shared<bool>(false);
    command->add_option("FILE", *files, "Message files")->required();
    command->add_flag("--raw", *isRaw, "Send the files as they are, even if they are not valid JSON");
    command->footer("Example:\n  deskwatch mail policy samples/hardened.json");
    command->callback([&common, files, isRaw] {
        std::vector<Request> requests;
        for (const auto& file : *files) {
            requests.push_back({"req_update_policy", readMessageFile(file, *isRaw ? Check::None : Check::ValidJson)});
        }
        sendAsMailApplication(chosenDevice(common), requests);
    });
}

void addDeleteCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("delete", "Tell the service that an account was deleted");
    auto id = std::make_shared<std::string>();
    command->add_option("ID", *id, "The account's number")->required();
    command->footer("Example:\n  deskwatch mail delete 2");
    command->callback([&common, id] { sendAsMailApplication(chosenDevice(common), {{"req_delete_account", *id}}); });
}

void addSendCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("send", "Send any request");
    auto request = std::make_shared<Request>();
    command->add_option("REQ", request->name, "The request's name")->required();
    command->add_option("TEXT", request->argument, "Its argument (default: empty)");
    command->footer("Example:\n  deskwatch mail send chk_password_policy");
    command->callback([&common, request] { sendAsMailApplication(chosenDevice(common), {*request}); });
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
    command->add_option("FILE", *files, std::string("Message files of the kind ") + kind.id)->required();
    command->footer(std::string("Example:\n  deskwatch mail ") + kind.command + " " + kind.example);
    command->callback([&common, files, id = std::string(kind.id)] {
        std::vector<Request> requests;
        for (const auto& file : *files) {
            requests.push_back({"req_update_policy", readMessageOfKind(file, id)});
        }
        sendAsMailApplication(chosenDevice(common), requests);
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
    command->callback([&common, request = fixed.request] { sendAsMailApplication(chosenDevice(common), {request}); });
}

} // namespace

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
                    {"check-password", "Ask for the lock that the policies require", {"chk_password_policy", ""}});
    addFixedCommand(
        *command, common,
        {"check-encryption", "Ask for the encryption that the policies require", {"chk_device_encryption_policy", ""}});
    addFixedCommand(*command, common,
                    {"wipe",
                     "Wipe the watch's internal storage at once",
                     {"req_update_policy", R"({"msgId":"eas-remote-wipe","seqId":1,"param":{}})"}});
    addSendCommand(*command, common);
    command->footer("Returns when the service has handled the request.\n"
                    "Example:\n  deskwatch mail policy samples/hardened.json");
}

} // namespace deskwatch
