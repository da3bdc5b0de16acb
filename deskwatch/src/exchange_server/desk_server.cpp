#include "exchange_server/desk_server.h"

#include <glib.h>

#include <algorithm>
#include <stdexcept>

#include "c_owners.h"
#include "device/plain_text.h"
#include "exchange/protocol_version.h"
#include "exchange/server_address.h"
#include "text/text_table.h"
#include "wbxml/element_xml.h"
#include "wbxml/wbxml_codec.h"

namespace deskwatch {

/// A command of a device that may be there.
struct DeskServer::Command {
    std::string name;
    std::string user;
    int version;
    std::string policyKey;
    ServedDevice& device;
    const std::string& body;
};

namespace {

/// More devices than any test has; beyond them nobody can make the server grow.
constexpr std::size_t mostDevices = 1000;

ServerAnswer plain(int status, std::string remark) {
    ServerAnswer answer;
    answer.status = status;
    answer.remark = std::move(remark);
    return answer;
}

ServerAnswer withDocument(const WbxmlElement& document, std::string remark) {
    auto answer = plain(200, std::move(remark));
    answer.headers.emplace_back("Content-Type", "application/vnd.ms-sync.wbxml");
    answer.body = encodeWbxml(document);
    return answer;
}

/// The user and the password of a request; none when it has no such header.
std::optional<std::pair<std::string, std::string>> credentialsOf(const ServerRequest& request) {
    const auto header = request.header("authorization");
    if (!startsWith(header, "Basic ")) {
        return std::nullopt;
    }
    gsize size = 0;
    const c::MemoryOwner<guchar> decoded(g_base64_decode(header.c_str() + 6, &size));
    const std::string text(reinterpret_cast<const char*>(decoded.get()), size);
    const auto colon = text.find(':');
    return colon != std::string::npos ? std::optional(std::pair(text.substr(0, colon), text.substr(colon + 1)))
                                      : std::nullopt;
}

bool isDeviceId(const std::string& id) {
    return !id.empty() && id.size() <= 32 &&
           std::all_of(id.begin(), id.end(), [](char character) { return g_ascii_isalnum(character) != FALSE; });
}

WbxmlElement commandStatus(const std::string& command, int status) {
    const std::string space = command == "FolderSync" ? "FolderHierarchy:" : command + ":";
    return {space, command, "", {{space, "Status", std::to_string(status), {}}}};
}

std::string ageOf(const ServedDevice& device) {
    const auto acknowledged = device.acknowledged ? std::to_string(*device.acknowledged) : "-";
    return !device.temporaryKey.empty() ? "not yet; earlier: " + acknowledged : acknowledged;
}

std::string wipeOf(const ServedDevice& device) {
    const std::string report = device.wipeReport ? "reported with " + std::to_string(*device.wipeReport) : "";
    if (device.wipe == WipeOrder::None) {
        return report.empty() ? "-" : report;
    }
    return wipedPart(device.wipe) + ": " + (report.empty() ? "ordered" : report);
}

} // namespace

DeskServer::DeskServer(ServedPolicies policies, std::string versions, std::optional<std::string> password)
    : policies_(std::move(policies)), versions_(std::move(versions)), password_(std::move(password)) {}

ServerAnswer DeskServer::answer(const ServerRequest& request) {
    const auto credentials = credentialsOf(request);
    if (!credentials || (password_ && credentials->second != *password_)) {
        auto answer = plain(401, "a request without the right password");
        answer.headers.emplace_back("WWW-Authenticate", "Basic realm=\"deskwatch\"");
        return answer;
    }
    if (request.method == "OPTIONS") {
        auto answer = plain(200, credentials->first + ": asks for the versions");
        answer.headers.emplace_back("MS-ASProtocolVersions", versions_);
        answer.headers.emplace_back("MS-ASProtocolCommands", "FolderSync,Settings,Provision");
        return disturbed(credentials->first, std::move(answer));
    }
    if (request.method != "POST") {
        return plain(405, "a request that is neither OPTIONS nor POST");
    }
    try {
        return disturbed(credentials->first, answerCommand(request));
    } catch (const std::runtime_error& error) {
        return plain(500, error.what()); // a policy file that is not one any more
    }
}

ServerAnswer DeskServer::answerCommand(const ServerRequest& request) {
    const auto query = readQuery(request.query);
    if (!query || !isDeviceId(query->deviceId) || query->user.empty()) {
        return plain(400, "a request whose query cannot be read");
    }
    if (!request.body.empty() && !startsWith(request.header("content-type"), "application/vnd.ms-sync")) {
        return plain(400, query->user + ": a body of the kind " + printable(request.header("content-type")));
    }
    const bool isPlain = query->version == 0;
    const auto version = versionOf(isPlain ? request.header("ms-asprotocolversion") : versionText(query->version));
    const std::pair id(query->user, query->deviceId);
    if (!version || (devices_.size() >= mostDevices && devices_.count(id) == 0)) {
        return plain(400, query->user + ": a version that nobody speaks, or one device too many");
    }
    const Command command{query->command, query->user,
                          *version,       isPlain ? request.header("x-ms-policykey") : query->policyKey,
                          devices_[id],   request.body};
    auto answer = command.name == "Provision" ? provision(command) : otherCommand(command);
    answer.isAboutPolicy = command.name == "Provision";
    answer.remark = query->user + " " + query->deviceId + " " + answer.remark;
    return answer;
}

ServerAnswer DeskServer::provision(const Command& command) {
    WbxmlElement request;
    try {
        request = decodeWbxml(command.body);
    } catch (const std::runtime_error& error) {
        return command.version <= protocol::v12_1 ? plain(400, error.what())
                                                  : withDocument(provisionStatus(102), error.what());
    }
    const auto [document, remark] =
        ProvisionExchange(command.device, command.version, policies_.documentOf(command.user), nextKey_)
            .answer(request);
    return withDocument(document, remark);
}

ServerAnswer DeskServer::otherCommand(const Command& command) {
    if (command.name != "FolderSync" && command.name != "Settings") {
        return plain(501, "wants the unknown command " + command.name);
    }
    const auto refusal = refusalOf(command);
    if (!refusal) {
        return withDocument(commandStatus(command.name, 1), command.name + " is answered");
    }
    const auto remark = command.name + " is refused with " + std::to_string(*refusal);
    return command.version <= protocol::v12_1 ? plain(449, remark + " as 449")
                                              : withDocument(commandStatus(command.name, *refusal), remark);
}

std::optional<int> DeskServer::refusalOf(const Command& command) const {
    const auto& device = command.device;
    if (device.wipe != WipeOrder::None) {
        return 140;
    }
    const auto policy = policies_.documentOf(command.user);
    if (!policy) {
        return std::nullopt;
    }
    if (device.key.empty()) {
        return command.policyKey.empty() ? 141 : 142;
    }
    return command.policyKey == device.key && device.sentPolicy == elementXml(*policy) ? std::nullopt
                                                                                       : std::optional(144);
}

std::string DeskServer::report() const {
    std::vector<std::vector<std::string>> rows{{"user", "device", "acknowledged with", "wipe"}};
    for (const auto& [id, device] : devices_) {
        rows.push_back({id.first, id.second, ageOf(device), wipeOf(device)});
    }
    return textTable(rows);
}

} // namespace deskwatch
