// What anybody may ask the server for the desk: requests of any method, query, headers and body, with orders between
// them.

#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "byte_reader.h"
#include "exchange/server_address.h"
#include "exchange_server/desk_server.h"
#include "fuzz_target.h"
#include "temporary_folder.h"

namespace {

using fuzz::ByteReader;
using fuzz::require;
using namespace deskwatch;

constexpr std::array methods{"POST", "POST", "POST", "OPTIONS", "GET", ""};
constexpr std::array commands{"Provision", "Provision", "FolderSync", "Settings", "Ping", "Sync"};
constexpr std::array versions{"2.5", "12.1", "14.1", "16.1", "99.9", ""};
constexpr std::array orders{"wipe",     "account-wipe", "forget", "http",   "status", "busy",
                            "redirect", "slow",         "cut",    "broken", "-"};

std::string policyFile() {
    static const TemporaryFolder folder;
    const auto file = folder.path() / "policy.xml";
    if (!exists(file)) {
        std::ofstream(file) << "<EASProvisionDoc><AllowCamera>0</AllowCamera></EASProvisionDoc>";
    }
    return file.string();
}

ServerRequest request(ByteReader& bytes) {
    ServerRequest request;
    request.method = bytes.oneOf(methods);
    request.query =
        bytes.flag() ? bytes.text() : queryText({bytes.oneOf(commands), "bob", "desk0001", 141, ""}, QueryForm::Plain);
    request.headers["authorization"] = bytes.flag() ? bytes.text() : "Basic Ym9iOg==";
    request.headers["content-type"] = "application/vnd.ms-sync.wbxml";
    request.headers["ms-asprotocolversion"] = bytes.oneOf(versions);
    request.headers["x-ms-policykey"] = bytes.flag() ? bytes.text() : "1000000002";
    request.body = bytes.flag() ? std::string("\x03\x01\x6A\x00\x00\x0E", 6) + bytes.text() : bytes.text();
    return request;
}

void order(DeskServer& server, ByteReader& bytes) {
    try {
        const auto* const name = bytes.oneOf(orders);
        server.order({"bob", name, bytes.text()});
    } catch (const std::runtime_error& error) {
        require(error.what()[0] != '\0', "a refusal has words");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ByteReader bytes(data, size);
    DeskServer server(ServedPolicies({"bob=" + policyFile(), policyFile()}), "14.1", std::nullopt);
    while (!bytes.isEmpty()) {
        if (bytes.below(4) == 0) {
            order(server, bytes);
            continue;
        }
        const auto answer = server.answer(request(bytes));
        require(answer.status >= 0 && answer.status < 1000 && answer.body.size() < 10'000, "an answer can be sent");
        require(answer.delay < 1000, "an answer comes some day");
        server.report();
    }
    return 0;
}
