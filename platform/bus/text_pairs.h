#ifndef TESK_TEXT_PAIRS_H
#define TESK_TEXT_PAIRS_H

#include <gio/gio.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "c_owners.h"

/// Pairs of texts as they are on the bus: launch data and messages. A text is an array of bytes there, the null byte
/// at its end included, since a C text need not be UTF-8 and travels unchanged. Shared by the host platform, deskwatch
/// and the tests.
namespace text_pairs {

inline constexpr char type[] = "a(ayay)";

/// Reads the bytes of a text, up to the first null byte or all.
inline std::string textOf(GVariant* bytes) {
    gsize size = 0;
    const auto* begin = static_cast<const char*>(g_variant_get_fixed_array(bytes, &size, 1));
    return {begin, std::find(begin, begin + size, '\0')};
}

inline std::vector<std::pair<std::string, std::string>> read(GVariant* pairs) {
    std::vector<std::pair<std::string, std::string>> texts;
    GVariantIter iterator;
    g_variant_iter_init(&iterator, pairs);
    GVariant* key = nullptr;
    GVariant* value = nullptr;
    while (g_variant_iter_next(&iterator, "(@ay@ay)", &key, &value) != FALSE) {
        const c::VariantOwner keyOwner(key);
        const c::VariantOwner valueOwner(value);
        texts.emplace_back(textOf(key), textOf(value));
    }
    return texts;
}

/// The bus form of a range of pairs, a floating reference.
template <class Pairs>
GVariant* toVariant(const Pairs& pairs) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE(type));
    for (const auto& [key, value] : pairs) {
        g_variant_builder_add(&builder, "(^ay^ay)", key.c_str(), value.c_str());
    }
    return g_variant_builder_end(&builder);
}

} // namespace text_pairs

#endif
