#ifndef DESKWATCH_STARTS_WITH_H
#define DESKWATCH_STARTS_WITH_H

#include <string_view>

namespace deskwatch {

/// What C++20 gives every text.
inline bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

} // namespace deskwatch

#endif
