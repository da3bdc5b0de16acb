#include "actors/request_log.h"

#include <algorithm>
#include <array>

#include "device/plain_text.h"

namespace deskwatch {
namespace {

constexpr std::string_view requestFunction = "__teskItpolicyReqCb";

/// What the service logs when it does not take a request or a message, and what that means.
struct PassedOver {
    std::string_view logged;
    const char* words;
};

constexpr std::array<PassedOver, 7> passedOver{{
    {"Failed to open file.", "the service cannot open its policy file"},
    {"Failed to get string from file.", "the service's policy file is empty"},
    {"Unsupported request : ", "the service does not know this request"},
    {"json_parser_get_root failed", "it is not valid JSON"},
    {"json_node_get_object failed", "it is not a JSON object"},
    {"this is not request msgId: ", "its \"msgId\" is none that the service knows"},
    {"json_object_get_object_member failed", "its \"param\" is missing or of the wrong type"},
}};

/// The lines before the service began that function first, and from each beginning on.
std::vector<std::vector<ServiceLine>> splitAt(std::string_view function, const std::vector<ServiceLine>& log) {
    std::vector<std::vector<ServiceLine>> parts(1);
    for (const auto& line : log) {
        if (line.function == function && line.text == "Enter") {
            parts.emplace_back();
        }
        parts.back().push_back(line);
    }
    return parts;
}

/// Whether these lines, of one request, can be those of that one.
bool isAbout(const Request& request, const std::vector<ServiceLine>& log) {
    const bool isUpdate = contains(log, "createResponsedMsg", "Enter");
    const bool isDeletion = contains(log, "delAccount", "Enter");
    return isUpdate == (request.name == requests::updatePolicy) &&
           isDeletion == (request.name == requests::deleteAccount);
}

} // namespace

bool contains(const std::vector<ServiceLine>& log, std::string_view function, std::string_view text) {
    return std::any_of(log.begin(), log.end(),
                       [&](const ServiceLine& line) { return line.function == function && line.text == text; });
}

bool isHandled(const std::vector<ServiceLine>& log) {
    return contains(log, requestFunction, "Leave");
}

std::string reasonToPassOver(const std::vector<ServiceLine>& log) {
    for (const auto& line : log) {
        for (const auto& entry : passedOver) {
            if (startsWith(line.text, entry.logged)) {
                return entry.words;
            }
        }
    }
    return "";
}

RequestLog logOf(const Request& request, const std::vector<ServiceLine>& log) {
    auto parts = splitAt(requestFunction, log);
    parts.erase(parts.begin()); // what came before any request
    if (parts.empty() || (parts.size() == 1 && !isHandled(parts.front()))) {
        return {log, true, false};
    }
    // what is not handled to the end is sent again
    const auto isThis = [&request](const auto& part) { return isHandled(part) && isAbout(request, part); };
    const auto first = std::find_if(parts.begin(), parts.end(), isThis);
    const bool isOwn = std::count_if(parts.begin(), parts.end(), isThis) == 1;
    const bool hasOthers = parts.size() > 1 || !isOwn;
    return {isOwn && hasOthers ? *first : log, isOwn, hasOthers};
}

std::vector<std::vector<ServiceLine>> splitByAccount(const std::vector<ServiceLine>& log) {
    auto parts = splitAt("addAccount", log);
    parts.erase(parts.begin());
    return parts;
}

} // namespace deskwatch
