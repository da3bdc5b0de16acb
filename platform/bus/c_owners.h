#ifndef TESK_C_OWNERS_H
#define TESK_C_OWNERS_H

#include <gio/gio.h>

#include <memory>
#include <string>

/// Owners of what C libraries hand out. Shared by the host platform, deskwatch and the tests.
///
/// What a call writes to an address is received in a plain pointer and given to an owner at once. The exception is an
/// error: it is a g_autoptr(GError), or goes to takeMessage where its text ends up in an exception.
namespace c {

template <auto function>
struct Release {
    template <class Type>
    void operator()(Type* handle) const {
        function(handle);
    }
};

/// Owns what the function releases.
template <class Type, auto function>
using Owner = std::unique_ptr<Type, Release<function>>;

/// Owns one reference of a GObject.
template <class Type>
using ObjectOwner = Owner<Type, g_object_unref>;

/// Owns memory that came from GLib.
template <class Type>
using MemoryOwner = Owner<Type, g_free>;

/// Owns one reference of a variant.
using VariantOwner = Owner<GVariant, g_variant_unref>;

/// Owns a list of texts that ends with null, and the texts.
using TextListOwner = Owner<char*, g_strfreev>;

using BytesOwner = Owner<GBytes, g_bytes_unref>;

using MainLoopOwner = Owner<GMainLoop, g_main_loop_unref>;

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

/// Takes the text of bytes and releases them. None have no text.
inline std::string takeText(GBytes* bytes) {
    const BytesOwner owner(bytes);
    gsize size = 0;
    const auto* const data = bytes != nullptr ? static_cast<const char*>(g_bytes_get_data(bytes, &size)) : nullptr;
    return data != nullptr ? std::string(data, size) : std::string();
}

} // namespace c

#endif
