#include <algorithm>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "accounts/account_list.h"
#include "accounts/mail_accounts.h"
#include "accounts/password_source.h"
#include "actors/refusal.h"
#include "commands.h"
#include "device/application_ids.h"
#include "exchange/exchange_trace.h"
#include "exchange/http_client.h"
#include "exchange/protocol_version.h"
#include "exchange/server_address.h"
#include "text/value_output.h"
#include "text/value_text.h"

namespace deskwatch {
namespace {

/// What the commands that speak to a server have in common.
struct ServerOptions {
    std::string passwordFile;
    std::string authorities;
    std::string trace;
    bool isImpatient = false;
    int patience = 600;
};

void addServerOptions(CLI::App& command, ServerOptions& options) {
    command
        .add_option("--password-file", options.passwordFile,
                    "File with the password in its first line, - for standard input (default: DESKWATCH_PASSWORD, "
                    "or else the terminal)")
        ->type_name("FILE");
    command.add_option("--cacert", options.authorities, "File of certificates to trust instead of the machine's own")
        ->type_name("FILE");
    command.add_option("--trace", options.trace, "File for what is sent and received, readable; import reads it")
        ->type_name("FILE");
    auto* noWait = command.add_flag("--no-wait", options.isImpatient, "Leave the wearer's answer to a later refresh");
    command.add_option("--patience", options.patience, "How long the wearer may take (default: 600)")
        ->check(CLI::Range(1, 1'000'000))
        ->type_name("SECONDS")
        ->excludes(noWait);
}

std::string accountWords(const MailAccount& account) {
    return account.server.user + " at " + account.server.url;
}

/// The way to the server and everything around it, for the time of a command.
class ServerCommand {
public:
    ServerCommand(const CommonOptions& common, const ServerOptions& options)
        : session_(chosenDevice(common), ids::mail), source_(options.passwordFile), http_(options.authorities) {
        if (!options.trace.empty()) {
            trace_ = std::make_unique<TracedTransport>(http_, options.trace);
        }
        Transport& transport = trace_ != nullptr ? static_cast<Transport&>(*trace_) : http_;
        accounts_ = std::make_unique<MailAccounts>(
            session_, MailAccounts::Surroundings{
                          transport, options.isImpatient ? 0 : options.patience,
                          [](const std::string& line) { std::cout << line << std::endl; },
                          [this](const MailAccount& account) { return source_.passwordOf(accountWords(account)); }});
    }

    MailAccounts& accounts() { return *accounts_; }

    /// The accounts that are meant; all that there are without a number.
    std::vector<int> chosen(const std::optional<int>& id) const {
        if (id) {
            return {*id};
        }
        auto ids = accounts_->store().ids();
        if (ids.empty()) {
            throw std::runtime_error("no account is connected to a server; deskwatch mail connect does that");
        }
        for (const int other : ids) {
            const auto first = accounts_->store().read(ids.front()).server.url;
            if (!source_.isAsked() && accounts_->store().read(other).server.url != first) {
                throw std::runtime_error("the accounts belong to several servers, and one password must not go to all; "
                                         "name an account, or type the passwords");
            }
        }
        return ids;
    }

private:
    DeviceSession session_;
    PasswordSource source_;
    HttpClient http_;
    std::unique_ptr<TracedTransport> trace_;
    std::unique_ptr<MailAccounts> accounts_;
};

struct ConnectOptions {
    ServerOptions server;
    NewAccount account;
};

void addVersionOption(CLI::App& command, std::optional<int>& version) {
    const auto list = joined(versionTexts(), ", ");
    command
        .add_option_function<std::string>(
            "--protocol", [&version](const std::string& text) { version = versionOf(text); },
            "Version of ActiveSync: " + list + " (default: the highest that both speak)")
        ->check(oneOf(versionTexts(), "is not a version of ActiveSync: " + list))
        ->type_name("VERSION");
}

void addConnectCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("connect", "Connect an account to an Exchange ActiveSync server");
    auto options = std::make_shared<ConnectOptions>();
    auto& account = options->account;
    command->add_option("URL", account.url, "The server: https://mail.example.com")->required();
    command->add_option("--user", account.user, "The user's name at the server")->required()->type_name("NAME");
    command->add_option("--account", account.id, "The account's number on the watch (default: the lowest free one)")
        ->check(checkPositive, "")
        ->type_name("ID");
    command->add_option("--name", account.name, "The account's name (default: made of the user and the server)")
        ->type_name("TEXT");
    addVersionOption(*command, account.version);
    command
        ->add_flag(
            "--base64-query", [&account](std::int64_t) { account.form = QueryForm::Base64; },
            "Send the short form of requests, which exists from version 12.1 on")
        ->type_name("");
    command->add_flag("--allow-plain", account.allowsPlain, "Allow HTTP without TLS to another machine");
    addServerOptions(*command, options->server);
    command->footer("Gives the server's policy to the service, waits for the wearer, and tells the server what became "
                    "of it.\nExample:\n  deskwatch mail connect https://mail.example.com --user bob");
    command->callback([&common, options] {
        const auto& wanted = options->account;
        asArgument([&wanted] { serverAddress(wanted.url, wanted.allowsPlain); });
        ServerCommand(common, options->server).accounts().connect(wanted);
    });
}

/// Refreshes accounts, of which none keeps the others waiting by its failure. Throws what went wrong with all of them.
void refreshEach(MailAccounts& accounts, const std::vector<int>& ids) {
    std::string failures;
    bool isRefused = true;
    for (const int id : ids) {
        try {
            if (const auto known = accounts.store().ids();
                std::count(known.begin(), known.end(), id) > 0 || ids.size() == 1) {
                accounts.refresh(id); // an earlier one may have had the watch wiped
            }
        } catch (const std::runtime_error& error) {
            isRefused = isRefused && dynamic_cast<const Refusal*>(&error) != nullptr;
            const std::string prefix = ids.size() > 1 ? "account " + std::to_string(id) + ": " : "";
            failures += (failures.empty() ? "" : "\n  ") + prefix + error.what();
        }
    }
    if (!failures.empty() && isRefused) {
        throw Refusal(failures);
    }
    if (!failures.empty()) {
        throw std::runtime_error(failures);
    }
}

struct RefreshOptions {
    ServerOptions server;
    std::optional<int> account;
    bool isAll = false;
};

void addRefreshCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("refresh", "Ask the servers of connected accounts for a new policy");
    auto options = std::make_shared<RefreshOptions>();
    auto* id = command->add_option("ACCOUNT", options->account, "The account's number (default: all)")
                   ->check(checkPositive, "");
    command->add_flag("--all", options->isAll, "All connected accounts")->excludes(id);
    addServerOptions(*command, options->server);
    command->footer("Goes on where an earlier command ended.\nExample:\n  deskwatch mail refresh 2");
    command->callback([&common, options] {
        ServerCommand server(common, options->server);
        refreshEach(server.accounts(), server.chosen(options->account));
    });
}

void addDisconnectCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("disconnect", "Remove an account that is connected to a server");
    auto id = std::make_shared<int>();
    command->add_option("ACCOUNT", *id, "The account's number")->required()->check(checkPositive, "");
    command->footer(
        "The server is not told, as with a real mail application.\nExample:\n  deskwatch mail disconnect 2");
    command->callback([&common, id] {
        const DeviceSession session(chosenDevice(common), ids::mail);
        HttpClient unused("");
        MailAccounts(session, {unused, 0, [](const std::string& line) { std::cout << line << std::endl; }, {}})
            .disconnect(*id);
    });
}

void addServersCommand(CLI::App& mail, const CommonOptions& common) {
    auto* command = mail.add_subcommand("servers", "List the accounts that are connected to a server");
    auto isJson = std::make_shared<bool>(false);
    command->add_flag("--json", *isJson, "A JSON array instead of a table");
    command->footer("Tells what became of each server's policy.\nExample:\n  deskwatch mail servers");
    command->callback([&common, isJson] {
        const AccountStore store(chosenDevice(common).layout());
        std::vector<MailAccount> accounts;
        for (const int id : store.ids()) {
            accounts.push_back(store.read(id));
        }
        std::cout << (*isJson ? jsonText(connectedJson(accounts), 2) + "\n" : connectedTable(accounts));
    });
}

} // namespace

void addMailServerCommands(CLI::App& mail, const CommonOptions& common) {
    addConnectCommand(mail, common);
    addRefreshCommand(mail, common);
    addDisconnectCommand(mail, common);
    addServersCommand(mail, common);
}

} // namespace deskwatch
