#include "TestDbus.h"

#include <fcntl.h>
#include <gio/gio.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>
#include <optional>

#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerTestIndication.h"

namespace {

constexpr char busName[] = "tesk.consumer.test";
constexpr char objectPath[] = "/tesk/consumer/test";
constexpr char policyFile[] = "/opt/usr/media/policy.json";
constexpr std::size_t policyLineSize = 4096;

constexpr char introspectionXml[] =
    "<node>"
    "<interface name='tesk.consumer.test'>"
    "<method name='ping'><arg type='i' name='ret' direction='out'/></method>"
    "<method name='removeAccount'><arg type='i' name='ret' direction='out'/></method>"
    "<method name='usingFile'><arg type='i' name='ret' direction='out'/></method>"
    "<method name='devicePasswordEnabled'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='allowSimplePassword'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='minDevicePasswordLength'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='minDevicePasswordComplexCharacters'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='maxInactivityTimeDeviceLock'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='devicePasswordExpiration'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='devicePasswordHistory'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='requireDeviceEncryption'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='allowBluetooth'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='allowPopimapEmail'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='allowTextMessaging'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "<method name='allowWifi'>"
    "<arg type='i' name='value' direction='in'/><arg type='i' name='ret' direction='out'/></method>"
    "</interface>"
    "</node>";

/// The parsed introspection data, null while it could not be parsed.
GDBusNodeInfo* nodeInfo = nullptr;

struct Releaser {
    void operator()(std::FILE* file) const { std::fclose(file); }
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
    void operator()(gchar* text) const { g_free(text); }
};
template <class Object>
using Owned = std::unique_ptr<Object, Releaser>;

/// A method that sends a test policy: the field that its argument sets, and what it needs to take effect.
struct FieldMethod {
    const char* name;
    std::int32_t TeskPolicyData::*field;
    bool needsPassword;
    bool needsAlphanumeric;
};

using Data = TeskPolicyData;

constexpr std::array<FieldMethod, 12> fieldMethods{{
    {"devicePasswordEnabled", &Data::devicePasswordEnabled, false, false},
    {"allowSimplePassword", &Data::allowSimplePassword, true, false},
    {"minDevicePasswordLength", &Data::minDevicePasswordLength, true, false},
    {"minDevicePasswordComplexCharacters", &Data::minDevicePasswordComplexCharacters, true, true},
    {"maxInactivityTimeDeviceLock", &Data::maxInactivityTimeDeviceLock, true, false},
    {"devicePasswordExpiration", &Data::devicePasswordExpiration, true, false},
    {"devicePasswordHistory", &Data::devicePasswordHistory, true, false},
    {"requireDeviceEncryption", &Data::requireDeviceEncryption, true, false},
    {"allowBluetooth", &Data::allowBluetooth, false, false},
    {"allowPopimapEmail", &Data::allowPopimapEmail, false, false},
    {"allowTextMessaging", &Data::allowTextMessaging, false, false},
    {"allowWifi", &Data::allowWifi, false, false},
}};

using PolicyLine = std::array<char, policyLineSize>;

/// Opens the policy file. A pipe in its place must not hold the service up until somebody writes to it.
Owned<std::FILE> openPolicyFile() {
    const int descriptor = open(policyFile, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor == -1) {
        return nullptr;
    }
    Owned<std::FILE> file(fdopen(descriptor, "r"));
    if (!file) {
        close(descriptor);
    }
    return file;
}

/// The first line of the policy file, empty when it has none; nothing when the file cannot be opened.
std::optional<PolicyLine> readPolicyFile(const TeskConsumerPlace& place) {
    const Owned<std::FILE> file = openPolicyFile();
    if (!file) {
        TESK_ERROR_AT(place, "Failed to open file.");
        return std::nullopt;
    }
    PolicyLine line{};
    if (std::fgets(line.data(), static_cast<int>(line.size()), file.get()) == nullptr) {
        TESK_WARN_AT(place, "Failed to get string from file.");
    }
    return line;
}

void sendPolicyFile(const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    if (const auto line = readPolicyFile(place)) {
        TeskConsumerIpcMgr::getInstance()->policyTest("req_update_policy", line->data());
    }
}

/// The record of the test account in which a method has set its field.
TeskPolicyData recordOf(const gchar* methodName, std::int32_t value) {
    TeskPolicyData record;
    for (const auto& method : fieldMethods) {
        if (g_strcmp0(methodName, method.name) == 0) {
            record.devicePasswordEnabled = method.needsPassword ? 1 : 0;
            record.alphanumericDevicePasswordRequired = method.needsAlphanumeric ? 1 : 0;
            record.*method.field = value;
        }
    }
    return record;
}

void sendRecord(const gchar* methodName, GVariant* parameters,
                const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    gint32 value = 0;
    g_variant_get(parameters, "(i)", &value);
    TESK_INFO_AT(place, "value: [%d]", value);
    const std::unique_ptr<std::string> text(TestDbus::__getPolicyDataJson(recordOf(methodName, value)));
    if (text) {
        TeskConsumerIpcMgr::getInstance()->policyTest("req_update_policy", text->c_str());
    }
}

void __handleMethodCall(GDBusConnection* /*connection*/, const gchar* /*sender*/, const gchar* /*objectPath*/,
                        const gchar* /*interfaceName*/, const gchar* methodName, GVariant* parameters,
                        GDBusMethodInvocation* invocation, gpointer /*userData*/) {
    TESK_INFO("Enter");
    TESK_INFO("TestDbus methodName: [%s]", methodName);
    // the parameters go with the invocation, which the reply releases
    const Owned<GVariant> arguments(g_variant_ref(parameters));
    const Owned<gchar> method(g_strdup(methodName));
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(i)", 0));

    if (g_strcmp0(method.get(), "ping") == 0) {
        TESK_WARN("Pong. I'm alive!");
    } else if (g_strcmp0(method.get(), "removeAccount") == 0) {
        TeskConsumerIpcMgr::getInstance()->policyTest("req_delete_account",
                                                      std::to_string(TeskConsumerTestIndication::accountId).c_str());
    } else if (g_strcmp0(method.get(), "usingFile") == 0) {
        sendPolicyFile();
    } else {
        sendRecord(method.get(), arguments.get());
    }
}

constexpr GDBusInterfaceVTable objectHandlers{__handleMethodCall, nullptr, nullptr, {}};

void __onBusAcquired(GDBusConnection* connection, const gchar* /*name*/, gpointer /*userData*/) {
    TESK_INFO("Enter");
    // without this GIO would end the service when the system bus goes away
    g_dbus_connection_set_exit_on_close(connection, FALSE);
    GDBusInterfaceInfo* const interface = nodeInfo != nullptr ? nodeInfo->interfaces[0] : nullptr;
    const guint regId = interface == nullptr
                            ? 0
                            : g_dbus_connection_register_object(connection, objectPath, interface, &objectHandlers,
                                                                nullptr, nullptr, nullptr);
    TESK_INFO("regId: [%d]", static_cast<int>(regId));
}

void __onNameAcquired(GDBusConnection* /*connection*/, const gchar* /*name*/, gpointer /*userData*/) {
    TESK_INFO("Enter");
}

void __onNameLost(GDBusConnection* /*connection*/, const gchar* /*name*/, gpointer /*userData*/) {
    TESK_INFO("Enter");
}

guint __initGdbus() {
    GError* failure = nullptr;
    nodeInfo = g_dbus_node_info_new_for_xml(introspectionXml, &failure);
    const Owned<GError> error(failure);
    if (nodeInfo == nullptr) {
        TESK_ERROR("g_dbus_node_info_new_for_xml failed: [%s]", error ? error->message : "");
    }
    const guint ownerId = g_bus_own_name(G_BUS_TYPE_SYSTEM, busName, G_BUS_NAME_OWNER_FLAGS_NONE, __onBusAcquired,
                                         __onNameAcquired, __onNameLost, nullptr, nullptr);
    TESK_INFO("ownerId: [%d]", static_cast<int>(ownerId));
    return ownerId;
}

} // namespace

bool TestDbus::init() {
    return __initGdbus() > 0;
}

std::string* TestDbus::__getPolicyDataJson(const TeskPolicyData& record) {
    const TeskConsumerTrace trace;
    const std::string text = TeskConsumerTestIndication::textOf(record);
    TESK_INFO("toJson: [%s]", text.c_str());
    return new (std::nothrow) std::string(text);
}
