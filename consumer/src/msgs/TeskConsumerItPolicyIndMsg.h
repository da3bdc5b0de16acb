#ifndef TESK_CONSUMER_IT_POLICY_IND_MSG_H
#define TESK_CONSUMER_IT_POLICY_IND_MSG_H

#include <json-glib/json-glib.h>

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "msgs/TeskConsumerResponsedMsg.h"
#include "rules/TeskPolicyData.h"

/// A policy set as an account's server imposes it, read from a message's "policySet" object. Which account it belongs
/// to is told by the account's entry around it.
class TeskConsumerPolicyInfo {
public:
    TeskConsumerPolicyInfo() = default;
    virtual ~TeskConsumerPolicyInfo();
    TeskConsumerPolicyInfo(const TeskConsumerPolicyInfo&) = delete;
    TeskConsumerPolicyInfo& operator=(const TeskConsumerPolicyInfo&) = delete;

    /// Reads a policy set; a member that is missing or of another kind gives 0 or false. The object stays the caller's.
    static std::shared_ptr<TeskConsumerPolicyInfo> getInstanceFromJsonObject(JsonObject* policySet);

    /// A new policy record with the values of this set.
    std::shared_ptr<TeskPolicyData> getPolicyData() const;

    std::int32_t passwordMode = 0; ///< 64 or 96: the password must be alphanumeric
    bool allowCamera = false;
    bool allowBluetoothMode = false;
    bool allowBrowser = false;
    bool allowDesktopSync = false;
    bool allowInternetSharing = false;
    bool allowPOPIMAPEmail = false;
    bool allowSimplePassword = false;
    bool allowStorageCard = false;
    bool allowTextMessaging = false;
    bool allowWifi = false;
    bool devicePasswordEnabled = false;
    std::int32_t devicePasswordExpiration = 0;
    std::int32_t devicePasswordHistory = 0;
    std::int32_t minDevicePasswordComplexCharacters = 0;
    std::int32_t maxDevicePasswordFailedAttempts = 0;
    std::int32_t maxInactivityTimeDeviceLock = 0;
    std::int32_t minDevicePasswordLength = 0;
    bool passwordRecoveryEnabled = false;
    bool requireDeviceEncryption = false;
    std::int32_t accountId = 0;
    std::string accountName;
    std::string displayName;
};

using TeskConsumerPolicyInfoList = std::list<std::shared_ptr<TeskConsumerPolicyInfo>>;

/// Hands over the current policy sets of one or more accounts.
class TeskConsumerItPolicyIndMsg : public TeskConsumerResponsedMsg {
public:
    TeskConsumerItPolicyIndMsg();

    int fromJson(const std::string& text) override;
    int process() override;

private:
    TeskConsumerPolicyInfoList policies;
};

#endif
