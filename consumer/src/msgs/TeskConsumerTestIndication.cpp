#include "msgs/TeskConsumerTestIndication.h"

#include <json-glib/json-glib.h>

#include <array>
#include <cstdint>
#include <memory>

namespace {

constexpr char accountName[] = "test@tesk.example";
constexpr int sequenceId = 999;
constexpr int alphanumericPasswordMode = 64;

struct JsonRelease {
    void operator()(JsonObject* object) const { json_object_unref(object); }
    void operator()(JsonNode* node) const { json_node_free(node); }
    void operator()(JsonGenerator* generator) const { g_object_unref(generator); }
    void operator()(gchar* text) const { g_free(text); }
};
template <class Object>
using JsonOwned = std::unique_ptr<Object, JsonRelease>;

using Data = TeskPolicyData;

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
        json_object_set_int_member(policySet, "PasswordMode", alphanumericPasswordMode);
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

/// A new message with one account.
JsonOwned<JsonObject> newIndication(const TeskPolicyData& record) {
    JsonObject* const account = json_object_new();
    json_object_set_int_member(account, "accountId", TeskConsumerTestIndication::accountId);
    json_object_set_string_member(account, "accountName", accountName);
    json_object_set_object_member(account, "policySet", newPolicySet(record));

    JsonArray* const accounts = json_array_new();
    json_array_add_object_element(accounts, account);

    JsonOwned<JsonObject> envelope(json_object_new());
    json_object_set_string_member(envelope.get(), "msgId", "email-itpolicy-ind");
    json_object_set_int_member(envelope.get(), "seqId", sequenceId);
    json_object_set_array_member(envelope.get(), "param", accounts);
    return envelope;
}

} // namespace

std::string TeskConsumerTestIndication::textOf(const TeskPolicyData& record) {
    const JsonOwned<JsonObject> envelope = newIndication(record);
    const JsonOwned<JsonNode> root(json_node_new(JSON_NODE_OBJECT));
    json_node_set_object(root.get(), envelope.get());

    const JsonOwned<JsonGenerator> generator(json_generator_new());
    json_generator_set_root(generator.get(), root.get());
    g_object_set(generator.get(), "pretty", FALSE, nullptr);
    const JsonOwned<gchar> text(json_generator_to_data(generator.get(), nullptr));
    return text ? text.get() : "";
}
