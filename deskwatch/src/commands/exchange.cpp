#include <iostream>
#include <memory>

#include "accounts/password_source.h"
#include "c_owners.h"
#include "commands.h"
#include "commands/completion.h"
#include "commands/output.h"
#include "device/end_request.h"
#include "exchange/http_client.h"
#include "exchange/server_address.h"
#include "exchange_server/http_server.h"

namespace deskwatch {
namespace {

struct ServeOptions {
    std::vector<std::string> policies;
    unsigned int port = 0;
    std::string versions = "2.5,12.0,12.1,14.0,14.1,16.0,16.1";
    std::string passwordFile;
    std::string certificate;
};

void serve(const ServeOptions& options) {
    std::optional<std::string> password;
    if (!options.passwordFile.empty()) {
        password = PasswordSource(options.passwordFile).passwordOf("");
    }
    DeskServer server(ServedPolicies(options.policies), options.versions, password);
    const c::MainLoopOwner loop(g_main_loop_new(nullptr, FALSE));
    const HttpServer http(server, options.port, options.certificate, [](const std::string& line) {
        std::cout << line << '\n';
        flushFollowed();
    });
    EndRequest endRequest;
    endRequest.whenNoted([&loop] { g_main_loop_quit(loop.get()); });
    std::cout << "listening at " << http.url() << '\n';
    flushOutput();
    endWithReader();
    g_main_loop_run(loop.get());
}

void addServeCommand(CLI::App& exchange) {
    auto* command = exchange.add_subcommand("serve", "Run an Exchange ActiveSync server for the desk");
    auto options = std::make_shared<ServeOptions>();
    command
        ->add_option("POLICY", options->policies,
                     "USER=FILE, or FILE for all other users; a policy in any format that import reads")
        ->required();
    command->add_option("--port", options->port, "Port of the loopback interface (default: any that is free)")
        ->check(CLI::Range(0, 65535))
        ->type_name("PORT");
    command->add_option("--versions", options->versions, "What it offers (default: 2.5 to 16.1)")->type_name("LIST");
    command
        ->add_option("--password-file", options->passwordFile,
                     "File with the password of all users, - for standard input (default: any will do)")
        ->type_name("FILE");
    command->add_option("--certificate", options->certificate, "File with a certificate and its key, for TLS")
        ->type_name("FILE");
    command->footer("Runs until it is ended, and prints a line for each request. A changed file is a changed policy.\n"
                    "Example:\n  deskwatch exchange serve samples/provision-hardened.xml --port 8025");
    command->callback([options] { serve(*options); });
}

struct OrderOptions {
    std::string url;
    ServerOrder order;
    std::string authorities;
};

/// Sends a request to a desk server's orders; returns what it answers.
std::string ask(const std::string& method, const OrderOptions& options, const std::string& query) {
    auto address = serverAddress(options.url, false);
    address = address.substr(0, address.find('/', address.find("://") + 3));
    const auto reply =
        HttpClient(options.authorities).send({method, address + ordersPath + query, {{orderHeader, "1"}}, ""});
    if (reply.status != 200) {
        throw std::runtime_error(reply.body.empty() ? options.url + " is not a server of deskwatch exchange serve"
                                                    : reply.body);
    }
    return reply.body;
}

std::string escaped(const std::string& text) {
    const c::MemoryOwner<char> result(g_uri_escape_string(text.c_str(), nullptr, FALSE));
    return result.get();
}

void addUrl(CLI::App& command, OrderOptions& options) {
    command.add_option("URL", options.url, "The address that the server printed")
        ->required()
        ->check(acceptedBy([](const std::string& url) { serverAddress(url, false); }));
    command.add_option("--cacert", options.authorities, "File of certificates to trust instead of the machine's own")
        ->type_name("FILE");
}

void addOrderCommand(CLI::App& exchange) {
    auto* command = exchange.add_subcommand("order", "Have a server for the desk do something to a user's devices");
    auto options = std::make_shared<OrderOptions>();
    addUrl(*command, *options);
    command->add_option("USER", options->order.user, "The user")->required();
    command->add_option("ORDER", options->order.name, "What to do, see below")
        ->required()
        ->check(proposing(DeskServer::orderNames()));
    command->add_option("VALUE", options->order.value, "What the order needs");
    command->footer("Orders:\n" + DeskServer::orderHelp() +
                    "Example:\n  deskwatch exchange order http://127.0.0.1:8025 bob wipe");
    command->callback([options] {
        const auto& order = options->order;
        asArgument([&order] { DeskServer::requireOrder(order); });
        std::cout << ask("POST", *options,
                         "?user=" + escaped(order.user) + "&order=" + escaped(order.name) +
                             "&value=" + escaped(order.value));
    });
}

void addShowCommand(CLI::App& exchange) {
    auto* command = exchange.add_subcommand("show", "Show what a server for the desk knows of its devices");
    auto options = std::make_shared<OrderOptions>();
    addUrl(*command, *options);
    command->footer("Example:\n  deskwatch exchange show http://127.0.0.1:8025");
    command->callback([options] { std::cout << ask("GET", *options, ""); });
}

} // namespace

void addExchangeCommand(CLI::App& program) {
    auto* command = program.add_subcommand("exchange", "Run an Exchange ActiveSync server for the desk");
    command->require_subcommand(1);
    addServeCommand(*command);
    addOrderCommand(*command);
    addShowCommand(*command);
    command->footer("Example:\n  deskwatch exchange serve samples/provision-hardened.xml");
}

} // namespace deskwatch
