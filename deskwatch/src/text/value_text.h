#ifndef DESKWATCH_VALUE_TEXT_H
#define DESKWATCH_VALUE_TEXT_H

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace deskwatch {

/// A number; "-" for none.
inline std::string numberText(const std::optional<int>& value) {
    return value ? std::to_string(*value) : "-";
}

/// How many there are of what a noun names: "1 remark", "2 remarks".
inline std::string counted(std::size_t count, const std::string& noun) {
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

/// Parts one after the other with a separator between them; "-" for none.
inline std::string joined(const std::vector<std::string>& parts, const std::string& separator) {
    std::string text;
    for (const auto& part : parts) {
        text += (text.empty() ? "" : separator) + part;
    }
    return text.empty() ? "-" : text;
}

} // namespace deskwatch

#endif
