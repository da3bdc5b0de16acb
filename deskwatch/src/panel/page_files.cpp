#include "panel/page_files.h"

#include <gio/gio.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "c_owners.h"
#include "panel/http_head.h"

namespace deskwatch {
namespace {

constexpr char resourceRoot[] = "/panel/";

/// A machine without a mime database would call a module of the page anything, and then it does not run.
constexpr std::array<std::pair<std::string_view, const char*>, 6> contentTypes{{
    {".html", "text/html; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},
    {".js", "text/javascript; charset=utf-8"},
    {".svg", "image/svg+xml"},
    {".json", "application/json"},
    {".xml", "text/xml; charset=utf-8"},
}};

const char* contentTypeOf(std::string_view name) {
    for (const auto& [ending, type] : contentTypes) {
        if (name.size() > ending.size() && name.substr(name.size() - ending.size()) == ending) {
            return type;
        }
    }
    return "application/octet-stream";
}

} // namespace

bool sendPageFile(SoupServerMessage* message, const std::string& name) {
    const auto file = name.empty() ? std::string("index.html") : name;
    const c::BytesOwner bytes(
        g_resources_lookup_data((resourceRoot + file).c_str(), G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr));
    if (bytes == nullptr) {
        return false;
    }
    setSafeHeaders(message);
    soup_server_message_set_status(message, SOUP_STATUS_OK, nullptr);
    auto* headers = soup_server_message_get_response_headers(message);
    soup_message_headers_replace(headers, "Content-Type", contentTypeOf(file));
    soup_message_body_append_bytes(soup_server_message_get_response_body(message), bytes.get());
    return true;
}

std::vector<std::string> pageFiles(const std::string& folder) {
    const c::TextListOwner names(
        g_resources_enumerate_children((resourceRoot + folder).c_str(), G_RESOURCE_LOOKUP_FLAGS_NONE, nullptr));
    std::vector<std::string> files;
    for (char** name = names.get(); name != nullptr && *name != nullptr; ++name) {
        files.emplace_back(*name);
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace deskwatch
