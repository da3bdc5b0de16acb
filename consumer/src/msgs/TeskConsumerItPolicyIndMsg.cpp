#include "msgs/TeskConsumerItPolicyIndMsg.h"

#include <array>

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerEnvelope.h"
#include "msgs/TeskConsumerJson.h"
#include "msgs/TeskConsumerPolicyStorage.h"

namespace {

/// A policy set's number: its member, where it is kept and which field of the record it becomes.
struct NumberMember {
    const char* name;
    std::int32_t TeskConsumerPolicyInfo::*info;
    std::int32_t TeskPolicyData::*field;
};

struct FlagMember {
    const char* name;
    bool TeskConsumerPolicyInfo::*info;
    std::int32_t TeskPolicyData::*field;
};

using Info = TeskConsumerPolicyInfo;
using Data = TeskPolicyData;

constexpr std::array<NumberMember, 6> numberMembers{{
    {"devicePasswordExpiration", &Info::devicePasswordExpiration, &Data::devicePasswordExpiration},
    {"devicePasswordHistory", &Info::devicePasswordHistory, &Data::devicePasswordHistory},
    {"minDevicePasswordComplexCharacters", &Info::minDevicePasswordComplexCharacters,
     &Data::minDevicePasswordComplexCharacters},
    {"maxDevicePasswordFailedAttempts", &Info::maxDevicePasswordFailedAttempts, &Data::maxDevicePasswordFailedAttempts},
    {"maxInactivityTimeDeviceLock", &Info::maxInactivityTimeDeviceLock, &Data::maxInactivityTimeDeviceLock},
    {"minDevicePasswordLength", &Info::minDevicePasswordLength, &Data::minDevicePasswordLength},
}};

constexpr std::array<FlagMember, 13> flagMembers{{
    {"allowCamera", &Info::allowCamera, &Data::allowCamera},
    {"allowBluetoothMode", &Info::allowBluetoothMode, &Data::allowBluetooth},
    {"allowBrowser", &Info::allowBrowser, &Data::allowBrowser},
    {"allowDesktopSync", &Info::allowDesktopSync, &Data::allowDesktopSync},
    {"allowInternetSharing", &Info::allowInternetSharing, &Data::allowInternetSharing},
    {"allowPOPIMAPEmail", &Info::allowPOPIMAPEmail, &Data::allowPopimapEmail},
    {"allowSimplePassword", &Info::allowSimplePassword, &Data::allowSimplePassword},
    {"allowStorageCard", &Info::allowStorageCard, &Data::allowStorageCard},
    {"allowTextMessaging", &Info::allowTextMessaging, &Data::allowTextMessaging},
    {"allowWifi", &Info::allowWifi, &Data::allowWifi},
    {"devicePasswordEnabled", &Info::devicePasswordEnabled, &Data::devicePasswordEnabled},
    {"passwordRecoveryEnabled", &Info::passwordRecoveryEnabled, &Data::passwordRecoveryEnabled},
    {"requireDeviceEncryption", &Info::requireDeviceEncryption, &Data::requireDeviceEncryption},
}};

constexpr std::uint32_t alphanumericMode = 0x40;
constexpr std::uint32_t ignoredModeBit = 0x20;

bool requiresAlphanumeric(std::int32_t passwordMode) {
    return (static_cast<std::uint32_t>(passwordMode) & ~ignoredModeBit) == alphanumericMode;
}

} // namespace

TeskConsumerPolicyInfo::~TeskConsumerPolicyInfo() = default;

std::shared_ptr<TeskConsumerPolicyInfo> TeskConsumerPolicyInfo::getInstanceFromJsonObject(JsonObject* policySet) {
    const TeskConsumerTrace trace;
    auto policy = std::make_shared<TeskConsumerPolicyInfo>();
    policy->passwordMode = TeskConsumerJson::intMember(policySet, "PasswordMode");
    for (const auto& member : numberMembers) {
        (*policy).*member.info = TeskConsumerJson::intMember(policySet, member.name);
    }
    for (const auto& member : flagMembers) {
        (*policy).*member.info = TeskConsumerJson::boolMember(policySet, member.name);
    }
    return policy;
}

std::shared_ptr<TeskPolicyData> TeskConsumerPolicyInfo::getPolicyData() const {
    const TeskConsumerTrace trace;
    auto data = std::make_shared<TeskPolicyData>();
    data->accountId = accountId;
    data->accountName = accountName;
    data->displayName = displayName;
    data->alphanumericDevicePasswordRequired = requiresAlphanumeric(passwordMode) ? 1 : 0;
    data->requireStorageCardEncryption = 0;
    for (const auto& member : numberMembers) {
        (*data).*member.field = this->*member.info;
    }
    for (const auto& member : flagMembers) {
        (*data).*member.field = this->*member.info ? 1 : 0;
    }
    return data;
}

TeskConsumerItPolicyIndMsg::TeskConsumerItPolicyIndMsg() {
    msgType = TeskConsumerMsgType::itPolicyInd;
}

int TeskConsumerItPolicyIndMsg::fromJson(const std::string& text) {
    const TeskConsumerTrace trace;
    const TeskConsumerEnvelope envelope(text);
    JsonObject* const root = envelope.rootOf("email-itpolicy-ind");
    if (root == nullptr) {
        return -1;
    }
    JsonArray* const accounts = TeskConsumerJson::arrayMember(root, "param");
    if (accounts == nullptr) {
        TESK_ERROR("json_object_get_object_member failed");
        return -1;
    }
    TeskConsumerJson::forEachObject(accounts, [this](JsonObject* account) {
        JsonObject* const policySet = TeskConsumerJson::objectMember(account, "policySet");
        if (policySet == nullptr) {
            return;
        }
        const auto policy = TeskConsumerPolicyInfo::getInstanceFromJsonObject(policySet);
        policy->accountId = TeskConsumerJson::intMember(account, "accountId");
        policy->accountName = TeskConsumerJson::textMember(account, "accountName");
        policy->displayName = policy->accountName;
        policies.push_back(policy);
    });
    return 0;
}

int TeskConsumerItPolicyIndMsg::process() {
    const TeskConsumerTrace trace;
    TeskConsumerPolicyStorage::storeAndApply(policies);
    return 0;
}
