#include "session/setting_value.h"

#include "c_owners.h"

namespace deskwatch {

Value readSetting(DConfClient* store, const std::string& path) {
    const c::VariantOwner value(dconf_client_read(store, path.c_str()));
    if (value != nullptr && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_INT32) != FALSE) {
        return g_variant_get_int32(value.get());
    }
    if (value != nullptr && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) != FALSE) {
        return std::string(g_variant_get_string(value.get(), nullptr));
    }
    return {};
}

} // namespace deskwatch
