// Writes the inputs to start from for the targets that speak ActiveSync: make-exchange-seeds FOLDER.

#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <string>

#include "exchange/provision_messages.h"
#include "wbxml/wbxml_codec.h"

namespace {

using deskwatch::encodeWbxml;
using deskwatch::provisionElement;
using Seeds = std::map<std::string, std::string>;
using Elements = std::vector<deskwatch::WbxmlElement>;

/// A text with its length in front, as ByteReader takes it.
std::string text(const std::string& content) {
    return std::string(1, static_cast<char>(content.size())) + content;
}

/// A reply of HTTP status 200 without headers and with this document.
std::string reply(const deskwatch::WbxmlElement& document) {
    return std::string(6, '\0') + std::string(1, '\0') + text(encodeWbxml(document));
}

/// The reply to OPTIONS.
std::string versions() {
    return std::string("\0\1", 2) + text("14.1") + std::string(5, '\0') + std::string(1, '\0');
}

deskwatch::WbxmlElement policy(const std::string& key, bool hasData) {
    Elements content{provisionElement("PolicyType", deskwatch::policy_type::wbxml), provisionElement("Status", "1"),
                     provisionElement("PolicyKey", key)};
    if (hasData) {
        const auto document =
            provisionElement("EASProvisionDoc", Elements{provisionElement("MinDevicePasswordLength", "6")});
        content.push_back(provisionElement("Data", Elements{document}));
    }
    return provisionElement("Provision",
                            Elements{provisionElement("Status", "1"),
                                     provisionElement("Policies", Elements{provisionElement("Policy", content)})});
}

/// A request to the server, after the byte that makes it one.
std::string request(const std::string& body) {
    return std::string("\1\0\0\0\0\2\0\0", 8) + text(body);
}

Seeds clientSeeds() {
    const std::string start = "\1\4";
    const auto wipe = provisionElement("Provision", Elements{provisionElement("RemoteWipe")});
    return {{"handshake", start + versions() + reply(policy("1", true)) + reply(policy("2", false))},
            {"wipe", start + versions() + reply(wipe)},
            {"raw", std::string(1, '\0') + "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nOK"},
            {"raw-chunks",
             std::string(1, '\0') + "HTTP/1.1 449 X\r\nTransfer-Encoding: chunked\r\n\r\n1\r\na\r\n0\r\n\r\n"}};
}

Seeds serverSeeds() {
    const auto first = request(encodeWbxml(deskwatch::policyRequest(141, true)));
    const auto second =
        request(encodeWbxml(deskwatch::acknowledgement(141, "1000000001", deskwatch::Compliance::Applied)));
    const auto report = request(encodeWbxml(deskwatch::wipeReport(deskwatch::WipeOrder::Device)));
    return {{"phases", first + second}, {"wipe", first + std::string("\0\0\0", 3) + first + report}};
}

void write(const Seeds& seeds, const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const auto& [name, content] : seeds) {
        std::ofstream(folder / name, std::ios::binary) << content;
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make-exchange-seeds FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder(argv[1]);
    write(clientSeeds(), folder / "exchange-client");
    write(serverSeeds(), folder / "exchange-server");
    return 0;
}
