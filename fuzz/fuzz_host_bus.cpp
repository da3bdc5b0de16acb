// What reaches the host platform over the bus or out of the settings store: bytes of a bus message, a value of any
// type made of any bytes, and names.

#include <gio/gio.h>

#include <algorithm>
#include <array>
#include <memory>
#include <set>

#include "app_control.h"
#include "app_control_handle.h"
#include "bundle.h"
#include "bus_values.h"
#include "byte_reader.h"
#include "c_owners.h"
#include "fuzz_target.h"
#include "glib_warnings.h"
#include "port_exchange.h"
#include "port_table.h"
#include "settings_store.h"
#include "string_map.h"
#include "text.h"
#include "text_pairs.h"
#include "vconf_watches.h"

namespace {

using fuzz::ByteReader;
using fuzz::require;

constexpr char portName[] = "eas-itpolicy-port";

/// Reads a received message as an application would.
void onMessage(int /*id*/, const char* /*sender*/, const char* /*port*/, bool /*trusted*/, bundle* message,
               void* countedMessages) {
    ++*static_cast<int*>(countedMessages);
    for (const char* key : {"req", "msg", ""}) {
        char* text = nullptr;
        const int result = bundle_get_str(message, key, &text);
        require((result == BUNDLE_ERROR_NONE) == (text != nullptr), "a bundle has a text or says that it has none");
    }
}

void deliverToPort(const char* port, const char* sender, GVariant* pairs) {
    int messages = 0;
    host::PortTable ports;
    ports.set(portName, onMessage, &messages);
    const bool isDelivered = ports.deliver(port, sender, pairs);
    require(messages == (isDelivered ? 1 : 0), "a message reaches its port once");
}

/// Reads the extra data of a received request as an application would.
void readLaunch(GVariant* pairs) {
    auto control = std::make_unique<app_control_s>();
    control->extraData = host::StringMap(pairs);
    const std::size_t expected = control->extraData.pairs().size();
    app_control_h handle = host::AppControls::get().add(std::move(control));

    std::set<std::string> keys;
    const auto collect = [](app_control_h request, const char* key, void* collected) {
        static_cast<std::set<std::string>*>(collected)->insert(key);
        char* value = nullptr;
        const int code = app_control_get_extra_data(request, key, &value);
        const bool isRefused = code == APP_CONTROL_ERROR_KEY_REJECTED || code == APP_CONTROL_ERROR_INVALID_PARAMETER;
        require((value != nullptr) == (code == APP_CONTROL_ERROR_NONE), "a value comes with success alone");
        require(code == APP_CONTROL_ERROR_NONE || isRefused, "a named key has a value, or is one that nobody may read");
        free(value); // NOLINT(cppcoreguidelines-no-malloc): that is how the platform's texts are released
        return true;
    };
    app_control_foreach_extra_data(handle, collect, &keys);
    require(keys.size() == expected, "each key is named once");
    require(app_control_destroy(handle) == APP_CONTROL_ERROR_NONE, "a request can be released");
    require(app_control_destroy(handle) != APP_CONTROL_ERROR_NONE, "a released request is known no more");
}

void readPairs(GVariant* pairs) {
    const host::StringMap map(pairs);
    deliverToPort(portName, "com.example.sender", pairs);
    readLaunch(pairs);
    const c::VariantOwner again(g_variant_ref_sink(map.toVariant()));
    require(host::StringMap(again.get()).pairs() == map.pairs(), "pairs survive the way over the bus");
}

/// What a setting or the arguments of a signal or call may be, whichever of them is expected.
void readValue(GVariant* value) {
    host::intOf(value);
    host::textOf(value);
    host::intPairOf(value);
    host::intArgumentOf(value);
    host::changedPathsOf(value);
    if (g_variant_is_of_type(value, G_VARIANT_TYPE(text_pairs::type)) != FALSE) {
        readPairs(value);
    }
}

/// The arguments of a call one by one, as the bus hands them over once they have the types of the call.
void readArguments(GVariant* arguments) {
    readValue(arguments);
    if (g_variant_is_of_type(arguments, G_VARIANT_TYPE("(ssa(ayay))")) != FALSE) {
        const char* port = nullptr;
        const char* sender = nullptr;
        GVariant* pairs = nullptr;
        g_variant_get(arguments, "(&s&s@a(ayay))", &port, &sender, &pairs);
        const c::VariantOwner owner(pairs);
        deliverToPort(port, sender, pairs);
    }
    for (gsize i = 0; i < g_variant_n_children(arguments); ++i) {
        const c::VariantOwner argument(g_variant_get_child_value(arguments, i));
        readValue(argument.get());
    }
}

void readBusMessage(ByteReader& bytes) {
    std::string blob = bytes.rest();
    const c::ObjectOwner<GDBusMessage> message(g_dbus_message_new_from_blob(
        reinterpret_cast<guchar*>(blob.data()), blob.size(), G_DBUS_CAPABILITY_FLAGS_NONE, nullptr));
    GVariant* const arguments = message != nullptr ? g_dbus_message_get_body(message.get()) : nullptr;
    if (arguments != nullptr) {
        readArguments(arguments);
    }
}

void readStoredValue(ByteReader& bytes) {
    static constexpr std::array types{text_pairs::type, "i",      "s",          "(i)", "(ii)", "b", "d", "v", "as",
                                      "(ayay)",         "(sass)", "(ssa(ayay))"};
    const char* const type = bytes.oneOf(types);
    const std::string content = bytes.rest();
    const std::unique_ptr<GBytes, decltype(&g_bytes_unref)> owner(g_bytes_new(content.data(), content.size()),
                                                                  &g_bytes_unref);
    const c::VariantOwner value(g_variant_ref_sink(g_variant_new_from_bytes(G_VARIANT_TYPE(type), owner.get(), FALSE)));
    readValue(value.get());
}

void readNames(ByteReader& bytes) {
    const std::string first = bytes.text();
    const std::string second = bytes.rest();
    const std::string path = host::vconfPath(first.c_str());
    require(path.empty() || host::SettingsStore::isKey(path), "a key has a path that can be one");

    const std::string escaped = host::escapedForBusName(first);
    const bool isPlain = std::all_of(escaped.begin(), escaped.end(),
                                     [](char letter) { return g_ascii_isalnum(letter) || letter == '_'; });
    require(isPlain, "an escaped name is plain");
    require((escaped == host::escapedForBusName(second)) == (first == second), "different names stay different");
    g_dbus_is_name(host::PortExchange::busName("com.example.application", first).c_str());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    harness::makeGlibWarningsFatal();
    ByteReader bytes(data, size);
    static constexpr std::array readers{readBusMessage, readStoredValue, readNames};
    bytes.oneOf(readers)(bytes);
    return 0;
}
