#include "exchange/server_address.h"

#include <glib.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "c_owners.h"
#include "device/plain_text.h"
#include "exchange/protocol_version.h"

namespace deskwatch {
namespace {

using Uri = c::Owner<GUri, g_uri_unref>;

constexpr char standardPath[] = "/Microsoft-Server-ActiveSync";

struct CommandCode {
    const char* name;
    unsigned char code;
};

constexpr CommandCode commandCodes[] = {{"FolderSync", 9}, {"Settings", 17}, {"Ping", 18}, {"Provision", 20}};

constexpr unsigned char userTag = 8;

bool isLoopback(const std::string& host) {
    return host == "localhost" || host == "::1" ||
           (startsWith(host, "127.") && g_hostname_is_ip_address(host.c_str()) != FALSE);
}

void addText(std::string& bytes, const std::string& text) {
    if (text.size() > 255) {
        throw std::runtime_error("\"" + text.substr(0, 20) + "...\" has more than 255 bytes");
    }
    bytes += static_cast<char>(text.size());
    bytes += text;
}

std::string escaped(const std::string& text) {
    const c::MemoryOwner<char> result(g_uri_escape_string(text.c_str(), nullptr, FALSE));
    return result.get();
}

std::string base64Query(const CommandQuery& query) {
    const auto* const code = std::find_if(std::begin(commandCodes), std::end(commandCodes),
                                          [&query](const CommandCode& row) { return query.command == row.name; });
    if (code == std::end(commandCodes) || query.version < protocol::v12_1) {
        throw std::runtime_error(query.command + " in version " + versionText(query.version) +
                                 " cannot be written as a base64 query, which exists from 12.1 on");
    }
    std::string bytes{static_cast<char>(query.version), static_cast<char>(code->code), '\x09', '\x04'};
    addText(bytes, query.deviceId);
    const auto key = wholeNumber<std::uint32_t>(query.policyKey);
    bytes += key ? '\x04' : '\x00';
    for (unsigned int shift = 0; key && shift < 32; shift += 8) {
        bytes += static_cast<char>(*key >> shift & 0xFFU);
    }
    addText(bytes, deviceType);
    bytes += static_cast<char>(userTag);
    addText(bytes, query.user);
    const c::MemoryOwner<char> text(g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size()));
    return text.get();
}

std::optional<CommandQuery> readPlainQuery(const std::string& text) {
    const c::Owner<GHashTable, g_hash_table_unref> parameters(
        g_uri_parse_params(text.c_str(), -1, "&", G_URI_PARAMS_NONE, nullptr));
    const auto value = [&parameters](const char* name) -> std::string {
        const auto* const found =
            parameters != nullptr ? static_cast<const char*>(g_hash_table_lookup(parameters.get(), name)) : nullptr;
        return found != nullptr ? found : "";
    };
    CommandQuery query{value("Cmd"), value("User"), value("DeviceId"), 0, ""};
    return query.command.empty() ? std::nullopt : std::optional(query);
}

/// Reads the fields of a base64 query one after the other. After the end everything is empty.
class Fields {
public:
    explicit Fields(std::string bytes) : bytes_(std::move(bytes)) {}

    unsigned char byte() {
        if (at_ >= bytes_.size()) {
            isCut_ = true;
            return 0;
        }
        return static_cast<unsigned char>(bytes_[at_++]);
    }

    std::string text() {
        const std::size_t size = byte();
        isCut_ = isCut_ || size > bytes_.size() - at_;
        std::string text = bytes_.substr(at_, size);
        at_ += text.size();
        return text;
    }

    bool isCut() const { return isCut_; }
    bool atEnd() const { return at_ >= bytes_.size(); }

private:
    std::string bytes_;
    std::size_t at_ = 0;
    bool isCut_ = false;
};

std::string keyText(const std::string& bytes) {
    std::uint32_t key = 0;
    for (std::size_t index = bytes.size(); index > 0; --index) {
        key = key << 8U | static_cast<unsigned char>(bytes[index - 1]);
    }
    return bytes.size() == 4 ? std::to_string(key) : "";
}

std::optional<CommandQuery> readBase64Query(const std::string& text) {
    gsize size = 0;
    const c::MemoryOwner<guchar> decoded(g_base64_decode(text.c_str(), &size));
    Fields fields(std::string(reinterpret_cast<const char*>(decoded.get()), size));
    CommandQuery query;
    query.version = fields.byte();
    const auto command = fields.byte();
    const auto* const code = std::find_if(std::begin(commandCodes), std::end(commandCodes),
                                          [command](const CommandCode& row) { return row.code == command; });
    fields.byte();
    fields.byte();
    query.deviceId = fields.text();
    query.policyKey = keyText(fields.text());
    fields.text(); // the device's type
    while (!fields.atEnd()) {
        const auto tag = fields.byte();
        const auto value = fields.text();
        query.user = tag == userTag ? value : query.user;
    }
    if (fields.isCut() || code == std::end(commandCodes)) {
        return std::nullopt;
    }
    query.command = code->name;
    return query;
}

} // namespace

std::string serverAddress(const std::string& given, bool allowsPlain) {
    const Uri uri(g_uri_parse(given.c_str(), G_URI_FLAGS_NONE, nullptr));
    const std::string scheme = uri != nullptr ? g_uri_get_scheme(uri.get()) : "";
    const char* const host = uri != nullptr ? g_uri_get_host(uri.get()) : nullptr;
    if ((scheme != "https" && scheme != "http") || host == nullptr || *host == '\0') {
        throw std::runtime_error("\"" + given + "\" is not the URL of a server; one is https://mail.example.com");
    }
    if (g_uri_get_userinfo(uri.get()) != nullptr || g_uri_get_query(uri.get()) != nullptr) {
        throw std::runtime_error("the URL must not have a user or a query; --user NAME names the user");
    }
    if (scheme == "http" && !allowsPlain && !isLoopback(host)) {
        throw std::runtime_error("\"" + given + "\": the password would travel readable; use https, or --allow-plain");
    }
    const std::string path = g_uri_get_path(uri.get());
    const c::MemoryOwner<char> text(
        g_uri_join(G_URI_FLAGS_NONE, scheme.c_str(), nullptr, host, g_uri_get_port(uri.get()),
                   path.empty() || path == "/" ? standardPath : path.c_str(), nullptr, nullptr));
    return text.get();
}

std::string queryText(const CommandQuery& query, QueryForm form) {
    if (form == QueryForm::Base64) {
        return base64Query(query);
    }
    return "Cmd=" + query.command + "&User=" + escaped(query.user) + "&DeviceId=" + query.deviceId +
           "&DeviceType=" + deviceType;
}

std::optional<CommandQuery> readQuery(const std::string& text) {
    return contains(text, "Cmd=") ? readPlainQuery(text) : readBase64Query(text);
}

} // namespace deskwatch
