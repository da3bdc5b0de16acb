#ifndef DESKWATCH_VALUE_OUTPUT_H
#define DESKWATCH_VALUE_OUTPUT_H

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

#include "session/value.h"

namespace deskwatch {

/// A value for a reader; "-" for none.
std::string valueText(const Value& value);

/// A value for a program; null for none.
nlohmann::ordered_json valueJson(const Value& value);

/// A number for a program; null for none.
inline nlohmann::ordered_json numberJson(const std::optional<int>& value) {
    return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json(nullptr);
}

/// JSON as text: on one line, or indented by `indent` columns. Bytes that are not valid UTF-8 become visible.
std::string jsonText(const nlohmann::ordered_json& json, int indent = -1);

} // namespace deskwatch

#endif
