#include "panel/http_head.h"

#include <array>
#include <cstring>
#include <utility>

#include "c_owners.h"
#include "device/plain_text.h"

namespace deskwatch {
namespace {

constexpr std::array<std::pair<const char*, const char*>, 8> safeHeaders{{
    {"Content-Security-Policy",
     "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self'; connect-src 'self'; base-uri 'none'; "
     "form-action 'none'; frame-ancestors 'none'; require-trusted-types-for 'script'; trusted-types 'none'"},
    {"X-Content-Type-Options", "nosniff"},
    {"Referrer-Policy", "no-referrer"},
    {"Cross-Origin-Resource-Policy", "same-origin"},
    {"Cross-Origin-Opener-Policy", "same-origin"},
    {"Cache-Control", "no-store"},
    {"X-Frame-Options", "DENY"},
    {"Connection", "close"},
}};

/// All lines of a header, joined by commas: two lines are never equal to one that is allowed.
std::optional<std::string> headerList(SoupMessageHeaders* headers, const char* name) {
    const char* text = soup_message_headers_get_list(headers, name);
    return text != nullptr ? std::optional<std::string>(text) : std::nullopt;
}

std::string authorityOf(GUri* uri) {
    const char* host = g_uri_get_host(uri);
    const std::string name = host != nullptr ? host : "";
    const bool isBare = name.find(':') != std::string::npos && name.front() != '[';
    return (isBare ? "[" + name + "]" : name) + ":" + std::to_string(g_uri_get_port(uri));
}

std::optional<std::string> queryToken(GUri* uri) {
    const char* query = g_uri_get_query(uri);
    constexpr char start[] = "token=";
    if (query == nullptr || std::strncmp(query, start, std::strlen(start)) != 0) {
        return std::nullopt;
    }
    return query + std::strlen(start);
}

std::optional<std::int64_t> statedLength(SoupMessageHeaders* headers) {
    const auto text = headerList(headers, "Content-Length");
    if (!text || soup_message_headers_get_encoding(headers) == SOUP_ENCODING_CHUNKED) {
        return std::nullopt;
    }
    return wholeNumber<std::int64_t>(*text);
}

} // namespace

RequestHead requestHead(SoupServerMessage* message) {
    auto* headers = soup_server_message_get_request_headers(message);
    auto* uri = soup_server_message_get_uri(message);
    RequestHead head;
    head.method = textOrNothing(soup_server_message_get_method(message));
    const char* path = g_uri_get_path(uri);
    const c::MemoryOwner<char> decoded(g_uri_unescape_string(path, nullptr));
    head.path = textOrNothing(decoded != nullptr ? decoded.get() : path);
    head.authority = authorityOf(uri);
    head.host = headerList(headers, "Host");
    head.origin = headerList(headers, "Origin");
    head.fetchSite = headerList(headers, "Sec-Fetch-Site");
    head.cookies = headerList(headers, "Cookie");
    head.contentType = headerList(headers, "Content-Type");
    head.token = queryToken(uri);
    head.length = statedLength(headers);
    return head;
}

void setSafeHeaders(SoupServerMessage* message) {
    auto* headers = soup_server_message_get_response_headers(message);
    for (const auto& [name, value] : safeHeaders) {
        soup_message_headers_replace(headers, name, value);
    }
}

} // namespace deskwatch
