#include "recording/recorded_value.h"

#include <limits>
#include <stdexcept>

namespace deskwatch {
namespace {

bool isNumber(const nlohmann::ordered_json& recorded) {
    using Limits = std::numeric_limits<std::int32_t>;
    return recorded.is_number_integer() && recorded >= Limits::min() && recorded <= Limits::max();
}

} // namespace

nlohmann::ordered_json recordedValue(GVariant* value) {
    if (value == nullptr) {
        return nullptr;
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT32) != FALSE) {
        return g_variant_get_int32(value);
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_STRING) != FALSE) {
        return g_variant_get_string(value, nullptr);
    }
    const c::MemoryOwner<char> text(g_variant_print(value, TRUE));
    return {{"value", text.get()}};
}

c::VariantOwner valueOfRecorded(const nlohmann::ordered_json& recorded) {
    if (recorded.is_null()) {
        return nullptr;
    }
    if (isNumber(recorded)) {
        return c::VariantOwner(g_variant_ref_sink(g_variant_new_int32(recorded.get<std::int32_t>())));
    }
    if (recorded.is_string()) {
        return c::VariantOwner(g_variant_ref_sink(g_variant_new_string(recorded.get<std::string>().c_str())));
    }
    const auto text = recorded.is_object() ? recorded.find("value") : recorded.end();
    if (text == recorded.end() || !text->is_string()) {
        throw std::runtime_error(R"(is not a number of 32 bits, a text, null or {"value": TEXT})");
    }
    GError* error = nullptr;
    c::VariantOwner parsed(g_variant_parse(nullptr, text->get<std::string>().c_str(), nullptr, nullptr, &error));
    if (parsed == nullptr) {
        throw std::runtime_error("is not the text form of a value: " + c::takeMessage(error));
    }
    return parsed;
}

} // namespace deskwatch
