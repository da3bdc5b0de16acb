#include "bus_values.h"

#include "c_owners.h"

namespace host {
namespace {

bool isOf(GVariant* value, const GVariantType* type) {
    return value != nullptr && g_variant_is_of_type(value, type) != FALSE;
}

} // namespace

std::optional<int> intOf(GVariant* value) {
    return isOf(value, G_VARIANT_TYPE_INT32) ? std::optional(g_variant_get_int32(value)) : std::nullopt;
}

std::optional<std::string> textOf(GVariant* value) {
    return isOf(value, G_VARIANT_TYPE_STRING) ? std::optional<std::string>(g_variant_get_string(value, nullptr))
                                              : std::nullopt;
}

std::optional<std::pair<int, int>> intPairOf(GVariant* value) {
    if (!isOf(value, G_VARIANT_TYPE("(ii)"))) {
        return std::nullopt;
    }
    std::pair<int, int> numbers;
    g_variant_get(value, "(ii)", &numbers.first, &numbers.second);
    return numbers;
}

std::optional<int> intArgumentOf(GVariant* arguments) {
    if (!isOf(arguments, G_VARIANT_TYPE("(i)"))) {
        return std::nullopt;
    }
    int number = 0;
    g_variant_get(arguments, "(i)", &number);
    return number;
}

std::vector<std::string> changedPathsOf(GVariant* arguments) {
    std::vector<std::string> paths;
    if (isOf(arguments, G_VARIANT_TYPE("(sass)"))) {
        const char* prefix = nullptr;
        GVariantIter* iterator = nullptr;
        g_variant_get(arguments, "(&sass)", &prefix, &iterator, nullptr);
        const c::Owner<GVariantIter, g_variant_iter_free> changes(iterator);
        for (const char* change = nullptr; g_variant_iter_next(changes.get(), "&s", &change);) {
            paths.push_back(std::string(prefix) + change);
        }
    }
    return paths;
}

} // namespace host
