#ifndef DESKWATCH_PLAIN_TEXT_H
#define DESKWATCH_PLAIN_TEXT_H

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace deskwatch {

/// What C++20 gives every text.
inline bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

/// What C++23 gives every text.
inline bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

/// The decimal number that a text is, a minus before it included; none when there is more in the text, or less, or when
/// the type has no room for it.
template <typename Number = int>
std::optional<Number> wholeNumber(std::string_view text) {
    Number number = 0;
    const auto* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace deskwatch

#endif
