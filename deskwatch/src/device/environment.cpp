#include "device/environment.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace deskwatch {
namespace {

bool endsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool isInherited(std::string_view name) {
    constexpr std::array<std::string_view, 13> names{
        "TESK_CLOCK",      "PATH",       "HOME",    "USER",        "LOGNAME",          "TMPDIR", "TZ", "LANG",
        "LD_LIBRARY_PATH", "DLOG_LEVEL", "G_DEBUG", "GCOV_PREFIX", "GCOV_PREFIX_STRIP"};
    return std::find(names.begin(), names.end(), name) != names.end() || name.substr(0, 3) == "LC_" ||
           endsWith(name, "SAN_OPTIONS");
}

} // namespace

Environment inheritedEnvironment() {
    Environment inherited;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view assignment(*entry);
        const auto equals = assignment.find('=');
        if (equals != std::string_view::npos && isInherited(assignment.substr(0, equals))) {
            inherited.emplace(assignment.substr(0, equals), assignment.substr(equals + 1));
        }
    }
    return inherited;
}

std::vector<std::string> assignments(const Environment& environment) {
    std::vector<std::string> list;
    list.reserve(environment.size());
    for (const auto& [name, value] : environment) {
        list.push_back(std::string(name).append("=").append(value));
    }
    return list;
}

} // namespace deskwatch
