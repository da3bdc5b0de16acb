#include "records/log_lines.h"

#include "records/log_line.h"

namespace deskwatch {

std::string LogLines::add(std::string_view text) {
    constexpr std::size_t longestLine = 1'048'576;
    const bool isLineComplete = text.find('\n') != std::string_view::npos; // what is unfinished has no line break
    unfinished_ += text;
    if (!isLineComplete) {
        if (unfinished_.size() <= longestLine) {
            return "";
        }
        unfinished_ += '\n'; // nobody's line is that long, and a log without line breaks must not fill the memory
    }
    if (!lowest_) {
        auto complete = unfinished_.substr(0, unfinished_.rfind('\n') + 1);
        unfinished_.erase(0, complete.size());
        return complete;
    }
    std::string wanted;
    std::size_t begin = 0;
    for (auto end = unfinished_.find('\n'); end != std::string::npos; end = unfinished_.find('\n', begin)) {
        const auto line = recordOf(std::string_view(unfinished_).substr(begin, end + 1 - begin));
        wanted += isWanted(line) ? line : std::string_view();
        begin = end + 1;
    }
    unfinished_.erase(0, begin);
    return wanted;
}

bool LogLines::isWanted(std::string_view line) const {
    const auto level = levelOf(line);
    return level && isAtLeast(*level, *lowest_);
}

} // namespace deskwatch
