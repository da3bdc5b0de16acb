#include "host_bus_seeds.h"

#include <gio/gio.h>

#include <memory>

#include "fuzz_target.h"
#include "sample_policies.h"
#include "text_pairs.h"

namespace {

struct Unref {
    void operator()(GDBusMessage* message) const { g_object_unref(message); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

/// The first byte of an input tells what the bytes after it are.
constexpr char busMessage = 0;
constexpr char storedValue = 1;
constexpr char names = 2;

std::string blobOf(GDBusMessage* message, GVariant* arguments) {
    const std::unique_ptr<GDBusMessage, Unref> owner(message);
    g_dbus_message_set_body(message, arguments);
    g_dbus_message_set_serial(message, 1);
    gsize size = 0;
    const std::unique_ptr<guchar, decltype(&g_free)> blob(
        g_dbus_message_to_blob(message, &size, G_DBUS_CAPABILITY_FLAGS_NONE, nullptr), &g_free);
    fuzz::require(blob != nullptr, "a message has a form for the bus");
    return busMessage + fuzz::textOf(blob.get(), size);
}

std::string callOf(const char* interface, const char* method, GVariant* arguments) {
    return blobOf(g_dbus_message_new_method_call("com.velmor.tesk-agent", "/tesk/host/application", interface, method),
                  arguments);
}

GVariant* pairsOf(const std::string& message) {
    return text_pairs::toVariant(std::map<std::string, std::string>{{"req", "req_update_policy"}, {"msg", message}});
}

/// A value as it is kept, after the place of its type in the target's list.
std::string settingOf(char typeIndex, GVariant* value) {
    const std::unique_ptr<GVariant, Unref> owner(g_variant_ref_sink(value));
    const std::string content(static_cast<const char*>(g_variant_get_data(value)), g_variant_get_size(value));
    return std::string{storedValue, typeIndex} + content;
}

} // namespace

std::map<std::string, std::string> fuzz::hostBusSeeds() {
    const std::string message = samples::indication(1, samples::builtIn);
    const std::string name = "db/setting/lock_type";
    return {
        {"send", callOf("tesk.host.MessagePort", "Send",
                        g_variant_new("(ss@a(ayay))", "eas-itpolicy-port", "com.example.mail", pairsOf(message)))},
        {"short-send", callOf("tesk.host.MessagePort", "Send",
                              g_variant_new("(ss@a(ayay))", "eas-itpolicy-port", "a.b", pairsOf("1")))},
        {"launch", callOf("tesk.host.Application", "Launch", g_variant_new("(s@a(ayay)b)", "a.b", pairsOf(""), TRUE))},
        {"event",
         blobOf(g_dbus_message_new_signal("/tesk/host/system", "tesk.host.System", "Event"), g_variant_new("(i)", 1))},
        {"pairs", settingOf(0, pairsOf("1"))},
        {"number", settingOf(1, g_variant_new_int32(1))},
        {"text", settingOf(2, g_variant_new_string("unencrypted"))},
        {"fault", settingOf(4, g_variant_new("(ii)", -1, 0))},
        {"name", std::string{names, static_cast<char>(name.size())} + name + name},
    };
}
