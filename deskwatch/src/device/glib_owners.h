#ifndef DESKWATCH_GLIB_OWNERS_H
#define DESKWATCH_GLIB_OWNERS_H

#include <gio/gio.h>

#include <memory>
#include <string>

namespace deskwatch {

struct GObjectRelease {
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct GFree {
    void operator()(gpointer memory) const { g_free(memory); }
};

struct GVariantRelease {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};

/// Owns one reference of a GObject.
template <typename Type>
using ObjectOwner = std::unique_ptr<Type, GObjectRelease>;

/// Owns memory that came from GLib.
template <typename Type>
using MemoryOwner = std::unique_ptr<Type, GFree>;

/// Owns one reference of a variant.
using VariantOwner = std::unique_ptr<GVariant, GVariantRelease>;

/// Takes the text of an error and frees it. An error that was not set has no text.
inline std::string takeMessage(GError* error) {
    if (error == nullptr) {
        return {};
    }
    if (g_dbus_error_is_remote_error(error) != FALSE) {
        g_dbus_error_strip_remote_error(error);
    }
    std::string message = error->message;
    g_error_free(error);
    return message;
}

} // namespace deskwatch

#endif
