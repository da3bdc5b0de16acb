#ifndef TESK_POLICY_DATA_H
#define TESK_POLICY_DATA_H

#include <cstdint>
#include <list>
#include <memory>
#include <string>

/// One account's policy set, or the merged one. A new record requires nothing and allows everything.
class TeskPolicyData {
public:
    TeskPolicyData() = default;
    virtual ~TeskPolicyData();

    TeskPolicyData(const TeskPolicyData&) = default;
    TeskPolicyData& operator=(const TeskPolicyData&) = default;
    TeskPolicyData(TeskPolicyData&&) = default;
    TeskPolicyData& operator=(TeskPolicyData&&) = default;

    std::int32_t accountId = 0; ///< valid from 1
    std::int32_t devicePasswordEnabled = 0;
    std::int32_t allowSimplePassword = 1;
    std::int32_t alphanumericDevicePasswordRequired = 0;
    std::int32_t minDevicePasswordComplexCharacters = 0;
    std::int32_t minDevicePasswordLength = 0;         ///< characters
    std::int32_t maxDevicePasswordFailedAttempts = 0; ///< 0: no limit
    std::int32_t maxInactivityTimeDeviceLock = 0;     ///< in the sender's unit; 0: no limit
    std::int32_t passwordRecoveryEnabled = 1;
    std::int32_t devicePasswordExpiration = 0; ///< in the sender's unit; 0: never
    std::int32_t devicePasswordHistory = 0;    ///< earlier passwords that may not come back
    std::int32_t requireDeviceEncryption = 0;
    std::int32_t requireStorageCardEncryption = 0;
    std::int32_t allowBluetooth = 2; ///< a level: 0 off, 1 hands-free, 2 allowed
    std::int32_t allowBrowser = 1;
    std::int32_t allowCamera = 1;
    std::int32_t allowPopimapEmail = 1;
    std::int32_t allowDesktopSync = 1;
    std::int32_t allowInternetSharing = 1;
    std::int32_t allowStorageCard = 1;
    std::int32_t allowTextMessaging = 1;
    std::int32_t allowWifi = 1;
    std::string accountName;
    std::string displayName;
};

using TeskPolicyDataList = std::list<std::shared_ptr<TeskPolicyData>>;

#endif
