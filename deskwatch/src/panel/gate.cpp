#include "panel/gate.h"

#include <algorithm>
#include <array>

#include "device/plain_text.h"

namespace deskwatch {
namespace {

constexpr char cookieName[] = "deskwatch";
constexpr unsigned badRequest = 400;
constexpr unsigned forbidden = 403;
constexpr unsigned wrongMethod = 405;
constexpr unsigned lengthRequired = 411;
constexpr unsigned tooLarge = 413;
constexpr unsigned wrongType = 415;

bool hasCookie(std::string_view cookies, const std::string& secret) {
    while (!cookies.empty()) {
        const auto end = std::min(cookies.find(';'), cookies.size());
        auto cookie = cookies.substr(0, end);
        cookies.remove_prefix(std::min(end + 1, cookies.size()));
        cookie.remove_prefix(std::min(cookie.find_first_not_of(' '), cookie.size()));
        const auto name = std::string(cookieName) + "=";
        if (cookie.substr(0, name.size()) == name && isSameSecret(std::string(cookie.substr(name.size())), secret)) {
            return true;
        }
    }
    return false;
}

/// Without its parameters.
std::string_view mediaType(std::string_view contentType) {
    const auto type = contentType.substr(0, contentType.find(';'));
    return type.substr(0, type.find_last_not_of(' ') + 1);
}

} // namespace

bool isActionPath(std::string_view name) {
    return name == "act";
}

std::string Gate::cookie() const {
    return std::string(cookieName) + "=" + secrets_.cookie + "; Path=" + folder() + "; HttpOnly; SameSite=Lax";
}

bool Gate::isOwnAuthority(std::string_view authority) const {
    const auto port = ":" + std::to_string(port_);
    constexpr std::array names{"127.0.0.1", "[::1]", "localhost"};
    return std::any_of(names.begin(), names.end(), [&](const char* name) { return authority == name + port; });
}

GateVerdict Gate::judge(const RequestHead& head) const {
    if (!head.host || !isOwnAuthority(*head.host) || !isOwnAuthority(head.authority)) {
        const auto port = std::to_string(port_);
        return {forbidden, "the Host must be 127.0.0.1:" + port + ", [::1]:" + port + " or localhost:" + port +
                               ", and be there once"};
    }
    for (const auto& verdict : {judgeOrigin(head), judgeSecret(head)}) {
        if (!verdict.isPassed()) {
            return verdict;
        }
    }
    return judgeBody(head);
}

GateVerdict Gate::judgeOrigin(const RequestHead& head) const {
    if (head.origin && *head.origin != "http://" + *head.host) {
        return {forbidden, "the Origin must be http://" + *head.host};
    }
    const bool isPage = head.method == "GET" && (head.path == entrance || head.path == folder());
    if (head.fetchSite && *head.fetchSite != "same-origin" && !isPage) {
        return {forbidden, "Sec-Fetch-Site must be same-origin"};
    }
    return {};
}

/// Who knows no secret learns nothing, not even which paths there are.
GateVerdict Gate::judgeSecret(const RequestHead& head) const {
    const bool isEntering = head.path == entrance && head.token && isSameSecret(*head.token, secrets_.token);
    const bool isInside = startsWith(head.path, folder()) && head.cookies && hasCookie(*head.cookies, secrets_.cookie);
    if (!isEntering && !isInside) {
        return {forbidden, ""};
    }
    const bool isAction = isInside && isActionPath(head.path.substr(folder().size()));
    const std::string method = isAction ? "POST" : "GET";
    return head.method == method ? GateVerdict{} : GateVerdict{wrongMethod, "this path takes " + method};
}

GateVerdict Gate::judgeBody(const RequestHead& head) {
    if (head.method == "GET") {
        return head.length.value_or(0) == 0 ? GateVerdict{} : GateVerdict{badRequest, "GET has no body here"};
    }
    if (!head.contentType || mediaType(*head.contentType) != "application/json") {
        return {wrongType, "the Content-Type must be application/json"};
    }
    if (!head.length || *head.length < 0) {
        return {lengthRequired, "a body needs a Content-Length"};
    }
    if (*head.length > largestBody) {
        return {tooLarge, "a body has at most " + std::to_string(largestBody) + " bytes"};
    }
    return {};
}

} // namespace deskwatch
