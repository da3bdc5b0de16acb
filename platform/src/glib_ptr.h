#ifndef PLATFORM_GLIB_PTR_H
#define PLATFORM_GLIB_PTR_H

#include <gio/gio.h>

#include <memory>

namespace host {

struct ObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

struct VariantUnref {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};

struct TextFree {
    void operator()(char* text) const { g_free(text); }
};

struct TextListFree {
    void operator()(char** texts) const { g_strfreev(texts); }
};

/// A reference to a GObject.
template <class Object>
using ObjectPtr = std::unique_ptr<Object, ObjectUnref>;

using VariantPtr = std::unique_ptr<GVariant, VariantUnref>;
using TextPtr = std::unique_ptr<char, TextFree>;
using TextListPtr = std::unique_ptr<char*, TextListFree>;

} // namespace host

#endif
