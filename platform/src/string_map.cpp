#include "string_map.h"

#include <algorithm>

#include "text_pairs.h"

namespace host {

StringMap::StringMap(GVariant* pairs) {
    for (const auto& [key, value] : text_pairs::read(pairs)) {
        set(key, value);
    }
}

GVariant* StringMap::toVariant() const {
    return text_pairs::toVariant(pairs_);
}

std::string* StringMap::find(const std::string& key) {
    const auto found = std::find_if(pairs_.begin(), pairs_.end(), [&](const auto& pair) { return pair.first == key; });
    return found != pairs_.end() ? &found->second : nullptr;
}

void StringMap::set(const std::string& key, const std::string& value) {
    remove(key);
    pairs_.emplace_back(key, value);
}

void StringMap::remove(const std::string& key) {
    pairs_.remove_if([&](const auto& pair) { return pair.first == key; });
}

} // namespace host
