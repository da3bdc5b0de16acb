#include "TestDbus.h"

#include <gio/gio.h>
#include <json-glib/json-glib.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <new>
#include <optional>

#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerLog.h"

namespace {

constexpr char busName[] = "tesk.consumer.test";
constexpr char objectPath[] = "/tesk/consumer/test";
constexpr char policyFile[] = "/opt/usr/media/policy.json";
constexpr std::size_t policyLineSize = 4096;

constexpr int testAccountId = 999;
constexpr char testAccountText[] = "999";
constexpr char testAccountName[] = "test@tesk.example";
constexpr int testSequenceId = 999;
constexpr int alphanumericMode = 64;

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

template <class Object>
struct Releaser;
template <>
struct Releaser<JsonObject> {
    void operator()(JsonObject* object) const { json_object_unref(object); }
};
template <>
struct Releaser<JsonGenerator> {
    void operator()(JsonGenerator* generator) const { g_object_unref(generator); }
};
template <>
struct Releaser<JsonNode> {
    void operator()(JsonNode* node) const { json_node_free(node); }
};
template <>
struct Releaser<gchar> {
    void operator()(gchar* text) const { g_free(text); }
};
template <>
struct Releaser<std::FILE> {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
template <>
struct Releaser<GError> {
    void operator()(GError* error) const { g_error_free(error); }
};
template <class Object>
using Owned = std::unique_ptr<Object, Releaser<Object>>;

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

enum class JsonKind { Flag, Number };

/// A member of the test policy set.
struct PolicyMember {
    const char* name;
    JsonKind kind;
    std::int32_t TeskPolicyData::*field;
};

constexpr std::array<PolicyMember, 19> policyMembers{{
    {"devicePasswordEnabled", JsonKind::Flag, &Data::devicePasswordEnabled},
    {"allowSimplePassword", JsonKind::Flag, &Data::allowSimplePassword},
    {"minDevicePasswordLength", JsonKind::Number, &Data::minDevicePasswordLength},
    {"maxDevicePasswordFailedAttempts", JsonKind::Number, &Data::maxDevicePasswordFailedAttempts},
    {"minDevicePasswordComplexCharacters", JsonKind::Number, &Data::minDevicePasswordComplexCharacters},
    {"maxInactivityTimeDeviceLock", JsonKind::Number, &Data::maxInactivityTimeDeviceLock},
    {"passwordRecoveryEnabled", JsonKind::Flag, &Data::passwordRecoveryEnabled},
    {"devicePasswordExpiration", JsonKind::Number, &Data::devicePasswordExpiration},
    {"devicePasswordHistory", JsonKind::Number, &Data::devicePasswordHistory},
    {"requireDeviceEncryption", JsonKind::Flag, &Data::requireDeviceEncryption},
    {"allowBluetoothMode", JsonKind::Flag, &Data::allowBluetooth},
    {"allowBrowser", JsonKind::Flag, &Data::allowBrowser},
    {"allowCamera", JsonKind::Flag, &Data::allowCamera},
    {"allowDesktopSync", JsonKind::Flag, &Data::allowDesktopSync},
    {"allowInternetSharing", JsonKind::Flag, &Data::allowInternetSharing},
    {"allowPOPIMAPEmail", JsonKind::Flag, &Data::allowPopimapEmail},
    {"allowStorageCard", JsonKind::Flag, &Data::allowStorageCard},
    {"allowTextMessaging", JsonKind::Flag, &Data::allowTextMessaging},
    {"allowWifi", JsonKind::Flag, &Data::allowWifi},
}};

/// A new policy-set object, which the caller owns.
JsonObject* newPolicySet(const TeskPolicyData& record) {
    JsonObject* const policySet = json_object_new();
    if (record.devicePasswordEnabled == 0) {
        json_object_set_int_member(policySet, "PasswordMode", 0);
    } else if (record.alphanumericDevicePasswordRequired != 0) {
        json_object_set_int_member(policySet, "PasswordMode", alphanumericMode);
    }
    for (const auto& member : policyMembers) {
        const std::int32_t value = record.*member.field;
        if (member.kind == JsonKind::Flag) {
            json_object_set_boolean_member(policySet, member.name, value != 0 ? TRUE : FALSE);
        } else {
            json_object_set_int_member(policySet, member.name, value);
        }
    }
    return policySet;
}

/// A new message with one account, which the caller owns.
Owned<JsonObject> newIndication(const TeskPolicyData& record) {
    JsonObject* const account = json_object_new();
    json_object_set_int_member(account, "accountId", testAccountId);
    json_object_set_string_member(account, "accountName", testAccountName);
    json_object_set_object_member(account, "policySet", newPolicySet(record));

    JsonArray* const accounts = json_array_new();
    json_array_add_object_element(accounts, account);

    Owned<JsonObject> envelope(json_object_new());
    json_object_set_string_member(envelope.get(), "msgId", "email-itpolicy-ind");
    json_object_set_int_member(envelope.get(), "seqId", testSequenceId);
    json_object_set_array_member(envelope.get(), "param", accounts);
    return envelope;
}

using PolicyLine = std::array<char, policyLineSize>;

/// The first line of the policy file, empty when it has none; nothing when the file cannot be opened.
std::optional<PolicyLine> readPolicyFile() {
    const Owned<std::FILE> file(std::fopen(policyFile, "r"));
    if (!file) {
        TESK_ERROR("Failed to open file.");
        return std::nullopt;
    }
    PolicyLine line{};
    if (std::fgets(line.data(), static_cast<int>(line.size()), file.get()) == nullptr) {
        TESK_WARN("Failed to get string from file.");
    }
    return line;
}

void sendPolicyFile() {
    if (const auto line = readPolicyFile()) {
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

void sendRecord(const gchar* methodName, GVariant* parameters) {
    gint32 value = 0;
    g_variant_get(parameters, "(i)", &value);
    TESK_INFO("value: [%d]", value);
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
    const std::unique_ptr<GVariant, decltype(&g_variant_unref)> arguments(g_variant_ref(parameters), &g_variant_unref);
    const std::unique_ptr<gchar, Releaser<gchar>> method(g_strdup(methodName));
    g_dbus_method_invocation_return_value(invocation, g_variant_new("(i)", 0));

    if (g_strcmp0(method.get(), "ping") == 0) {
        TESK_WARN("Pong. I'm alive!");
    } else if (g_strcmp0(method.get(), "removeAccount") == 0) {
        TeskConsumerIpcMgr::getInstance()->policyTest("req_delete_account", testAccountText);
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
    const Owned<JsonObject> envelope = newIndication(record);
    const Owned<JsonNode> root(json_node_new(JSON_NODE_OBJECT));
    json_node_set_object(root.get(), envelope.get());

    const Owned<JsonGenerator> generator(json_generator_new());
    json_generator_set_root(generator.get(), root.get());
    g_object_set(generator.get(), "pretty", FALSE, nullptr);
    const Owned<gchar> text(json_generator_to_data(generator.get(), nullptr));
    auto* const json = new (std::nothrow) std::string(text ? text.get() : "");
    TESK_INFO("toJson: [%s]", text ? text.get() : "");
    return json;
}
