#include "exchange/status_words.h"

#include <algorithm>
#include <iterator>

namespace deskwatch {
namespace {

struct Words {
    int code;
    const char* meaning;
    const char* advice;
};

constexpr Words httpStatuses[] = {
    {301, "the address has moved", "connect to the new one"},
    {302, "the address has moved", "connect to the new one"},
    {307, "the address has moved", "connect to the new one"},
    {308, "the address has moved", "connect to the new one"},
    {400, "the server does not understand the request", "--protocol VERSION tries another version"},
    {401, "the user or the password is wrong", "check both; some servers want the name with its domain"},
    {403, "this user may not use ActiveSync", "the administrator has to allow it for the user or the device"},
    {404, "there is no ActiveSync at this address", "check the URL"},
    {405, "there is no ActiveSync at this address", "check the URL"},
    {449, "the server wants the policy to be accepted first, again and again", "ask the administrator"},
    {451, "the user's mailbox is on another server, which is not named", "connect to that server's URL"},
    {500, "the server failed", "try again later; its log has the reason"},
    {501, "the server does not know the command", "the administrator has to enable provisioning"},
    {502, "a gateway cannot reach the server", "try again later"},
    {503, "the server is too busy", "try again later"},
    {507, "the mailbox is full", "delete mail"},
};

constexpr Words statuses[] = {
    {2, "the server calls the request faulty", "--protocol VERSION tries another version"},
    {3, "the server failed", "try again later"},
    {5, "the policy key is not the server's", "connect again"},
    {101, "the request has invalid content", "--protocol VERSION tries another version"},
    {102, "the server cannot read the request's WBXML", "report it with --trace FILE"},
    {103, "the server cannot read the request's XML", "report it with --trace FILE"},
    {108, "the server does not accept the device id", "connect again"},
    {109, "the server does not accept the device type", "report it with --trace FILE"},
    {110, "the server failed and asks not to try again", "ask the administrator"},
    {111, "the server failed for now", "try again later"},
    {125, "this user may not use ActiveSync", "ask the administrator"},
    {126, "this user may not use ActiveSync", "ask the administrator"},
    {129, "this device may not use ActiveSync", "the administrator has to allow the device"},
    {130, "this user may not use the command", "ask the administrator"},
    {131, "this account may not use ActiveSync", "ask the administrator"},
    {138, "the server does not know the command in this version", "--protocol VERSION chooses another version"},
    {139, "the server allows only devices that apply its whole policy", "the administrator has to allow others"},
    {140, "the server orders a wipe", "mail refresh carries it out"},
    {141, "the server misses the policy key", "connect again"},
    {142, "the server wants the policy to be accepted first, again and again", "ask the administrator"},
    {143, "the policy is due for refresh, again and again", "ask the administrator"},
    {144, "the policy has changed, again and again", "ask the administrator"},
    {145, "the server does not allow devices that others manage", "ask the administrator"},
    {165, "the server wants a description of the device", "--protocol VERSION chooses another version"},
    {177, "the user has too many devices", "remove an old one at the server"},
};

constexpr Words policyStatuses[] = {
    {2, "the server has no policy for this user", "there is nothing to do"},
    {3, "the server does not know the kind of policy", "--protocol VERSION tries another version"},
    {4, "the policy on the server is damaged", "the administrator has to save it again"},
    {5, "the server has given out another key meanwhile", "connect again"},
};

template <class Rows>
const Words* find(const Rows& rows, int code) {
    const auto* const row = std::find_if(std::begin(rows), std::end(rows),
                                         [code](const Words& candidate) { return candidate.code == code; });
    return row != std::end(rows) ? row : nullptr;
}

template <class Rows>
std::string meaning(const Rows& rows, const std::string& what, int code) {
    const auto* const row = find(rows, code);
    return what + " " + std::to_string(code) + ", " + (row != nullptr ? row->meaning : "which is not defined");
}

template <class Rows>
std::string words(const Rows& rows, const std::string& what, int code) {
    const auto* const row = find(rows, code);
    return meaning(rows, what, code) + ": " + (row != nullptr ? row->advice : "report it with --trace FILE");
}

} // namespace

std::string httpWords(int status) {
    return words(httpStatuses, "HTTP status", status);
}

std::string statusWords(int status) {
    return words(statuses, "Status", status);
}

std::string policyStatusWords(int status) {
    return words(policyStatuses, "Status of the policy", status);
}

std::string statusMeaning(int status) {
    return meaning(statuses, "Status", status);
}

std::string policyStatusMeaning(int status) {
    return meaning(policyStatuses, "Status of the policy", status);
}

bool asksForHandshake(int httpStatus, int status) {
    return httpStatus == 449 || (status >= 140 && status <= 144);
}

} // namespace deskwatch
