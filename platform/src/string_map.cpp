#include "string_map.h"

#include <algorithm>

#include "text.h"

namespace host {

StringMap::StringMap(GVariant* pairs) {
    GVariantIter iterator;
    g_variant_iter_init(&iterator, pairs);
    const char* key = nullptr;
    const char* value = nullptr;
    while (g_variant_iter_next(&iterator, "(&s&s)", &key, &value)) {
        set(key, value);
    }
}

GVariant* StringMap::toVariant() const {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a(ss)"));
    for (const auto& [key, value] : pairs_) {
        g_variant_builder_add(&builder, "(ss)", key.c_str(), value.c_str());
    }
    return g_variant_builder_end(&builder);
}

bool StringMap::isUtf8() const {
    return std::all_of(pairs_.begin(), pairs_.end(),
                       [](const auto& pair) { return host::isUtf8(pair.first) && host::isUtf8(pair.second); });
}

std::string* StringMap::find(const std::string& key) {
    const auto found = std::find_if(pairs_.begin(), pairs_.end(), [&](const auto& pair) { return pair.first == key; });
    return found != pairs_.end() ? &found->second : nullptr;
}

void StringMap::set(const std::string& key, const std::string& value) {
    if (std::string* present = find(key)) {
        *present = value;
    } else {
        pairs_.emplace_back(key, value);
    }
}

void StringMap::remove(const std::string& key) {
    pairs_.remove_if([&](const auto& pair) { return pair.first == key; });
}

} // namespace host
