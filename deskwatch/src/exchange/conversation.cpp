#include "exchange/conversation.h"

#include <glib.h>

#include <algorithm>
#include <stdexcept>

#include "c_owners.h"
#include "device/plain_text.h"
#include "exchange/protocol_version.h"
#include "exchange/status_words.h"
#include "wbxml/wbxml_codec.h"

namespace deskwatch {
namespace {

constexpr int mostMoves = 3;
constexpr int mostPauses = 3;
/// Who has to wait longer than this is told so.
constexpr int longestPause = 30;
constexpr int firstPause = 2;

constexpr char contentType[] = "application/vnd.ms-sync.wbxml";

std::string base64(const std::string& text) {
    const c::MemoryOwner<char> encoded(g_base64_encode(reinterpret_cast<const guchar*>(text.data()), text.size()));
    return encoded.get();
}

/// Seconds of a Retry-After header; a date, which no server of this kind sends, counts as none.
std::optional<int> secondsOf(const std::string& text) {
    const auto seconds = wholeNumber(text);
    return seconds >= 0 ? seconds : std::nullopt;
}

int pauseAfter(const HttpReply& reply, int pauses) {
    const auto asked = secondsOf(reply.header("retry-after"));
    if (asked && *asked > longestPause) {
        throw std::runtime_error(httpWords(reply.status) + ", in " + std::to_string(*asked) + " seconds");
    }
    // a wish for no pause at all would make three requests of one at once
    return asked ? std::max(*asked, 1) : firstPause << pauses;
}

bool mayHaveDocument(int status) {
    return status == 200 || status == 403 || status == 449;
}

} // namespace

Conversation::Conversation(Transport& transport, ServerAccount& account, std::string password)
    : transport_(transport), account_(account),
      authorization_("Basic " + base64(account.user + ":" + std::move(password))) {}

std::string Conversation::offeredVersions() {
    const auto reply = send("OPTIONS", "", "", "");
    if (reply.status != 200) {
        throw std::runtime_error(httpWords(reply.status));
    }
    auto offered = reply.header("ms-asprotocolversions");
    if (offered.empty()) {
        throw std::runtime_error("the server at this address does not speak ActiveSync: check the URL");
    }
    return offered;
}

CommandReply Conversation::command(const std::string& name, const WbxmlElement& body, const std::string& policyKey) {
    const auto reply = send("POST", name, encodeWbxml(body), policyKey);
    CommandReply result{reply.status, std::nullopt};
    // an error page is not a document, and some servers break off in one; with 200 anything else is an error
    if (mayHaveDocument(reply.status) && !reply.body.empty() && (reply.status == 200 || looksLikeWbxml(reply.body))) {
        result.document = decodeWbxml(reply.body);
    }
    return result;
}

HttpReply Conversation::send(const std::string& method, const std::string& command, const std::string& body,
                             const std::string& policyKey) {
    int pauses = 0;
    for (int moves = 0;;) {
        auto reply = transport_.send(request(method, command, body, policyKey));
        for (const auto& [name, value] : reply.cookies) {
            account_.cookies[name] = value;
        }
        if (reply.status == 451 && !reply.header("x-ms-location").empty() && moves++ < mostMoves) {
            moveTo(reply);
        } else if (reply.status == 503 && pauses < mostPauses) {
            transport_.pause(pauseAfter(reply, pauses++));
        } else {
            return reply;
        }
    }
}

HttpRequest Conversation::request(const std::string& method, const std::string& command, const std::string& body,
                                  const std::string& policyKey) const {
    HttpRequest request{method, account_.url, {{"Authorization", authorization_}, {"User-Agent", "deskwatch/1"}}, body};
    if (!command.empty()) {
        const CommandQuery query{command, account_.user, account_.deviceId, account_.version,
                                 policyKey == "0" ? "" : policyKey};
        request.url += "?" + queryText(query, account_.form);
        request.headers.emplace_back("Content-Type", contentType);
        if (account_.form == QueryForm::Plain) {
            request.headers.emplace_back("MS-ASProtocolVersion", versionText(account_.version));
            request.headers.emplace_back("X-MS-PolicyKey", policyKey);
        }
    }
    std::string cookies;
    for (const auto& [name, value] : account_.cookies) {
        cookies.append(cookies.empty() ? "" : "; ").append(name).append("=").append(value);
    }
    if (!cookies.empty() && account_.version >= protocol::v16_0) {
        request.headers.emplace_back("Cookie", cookies);
    }
    return request;
}

void Conversation::moveTo(const HttpReply& reply) {
    const bool wasEncrypted = startsWith(account_.url, "https:");
    const auto url = serverAddress(reply.header("x-ms-location"), account_.allowsPlain);
    if (wasEncrypted && !startsWith(url, "https:")) {
        throw std::runtime_error("the server sends the watch to " + url + ", where the password would travel readable");
    }
    account_.url = url;
    account_.cookies.clear();
}

} // namespace deskwatch
