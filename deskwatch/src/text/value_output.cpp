#include "text/value_output.h"

namespace deskwatch {

std::string valueText(const Value& value) {
    if (const int* number = std::get_if<int>(&value)) {
        return std::to_string(*number);
    }
    const auto* text = std::get_if<std::string>(&value);
    return text != nullptr ? *text : "-";
}

nlohmann::ordered_json valueJson(const Value& value) {
    if (const int* number = std::get_if<int>(&value)) {
        return *number;
    }
    const auto* text = std::get_if<std::string>(&value);
    return text != nullptr ? nlohmann::ordered_json(*text) : nlohmann::ordered_json(nullptr);
}

std::string jsonText(const nlohmann::ordered_json& json, int indent) {
    return json.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace deskwatch
