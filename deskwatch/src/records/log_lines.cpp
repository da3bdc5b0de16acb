#include "records/log_lines.h"

namespace deskwatch {
namespace {

/// From the lowest to the highest.
constexpr std::string_view levels = "VDIWEFS";

} // namespace

std::string LogLines::add(std::string_view text) {
    unfinished_ += text;
    std::string wanted;
    std::size_t begin = 0;
    for (auto end = unfinished_.find('\n'); end != std::string::npos; end = unfinished_.find('\n', begin)) {
        const auto line = std::string_view(unfinished_).substr(begin, end + 1 - begin);
        wanted += isWanted(line) ? line : std::string_view();
        begin = end + 1;
    }
    unfinished_.erase(0, begin);
    return wanted;
}

bool LogLines::isWanted(std::string_view line) const {
    if (!lowest_) {
        return true;
    }
    const bool hasLevel = line.size() > 1 && line[1] == '/' && levels.find(line[0]) != std::string_view::npos;
    return hasLevel && levels.find(line[0]) >= levels.find(*lowest_);
}

} // namespace deskwatch
