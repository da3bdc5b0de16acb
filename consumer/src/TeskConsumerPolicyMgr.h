#ifndef TESK_CONSUMER_POLICY_MGR_H
#define TESK_CONSUMER_POLICY_MGR_H

#include <memory>

#include "ITeskConsumerPolicyAdapter.h"
#include "TeskConsumerLog.h"
#include "rules/TeskPasswordDecision.h"
#include "rules/TeskPolicyData.h"
#include "rules/TeskPolicySettings.h"

/// What applyPolicy() answers when the wearer must set a stronger lock.
constexpr int TESK_POLICY_PASSWORD_REQUIRED = -6000;

/// Merges the stored policies, writes the outcome to the device and finds out what the wearer still has to do.
class TeskConsumerPolicyMgr {
public:
    /// The process's one instance.
    static TeskConsumerPolicyMgr* getInstance();

    TeskConsumerPolicyMgr();
    virtual ~TeskConsumerPolicyMgr();
    TeskConsumerPolicyMgr(const TeskConsumerPolicyMgr&) = delete;
    TeskConsumerPolicyMgr& operator=(const TeskConsumerPolicyMgr&) = delete;

    /// Makes the service an administrator of the device while no account is stored yet. Returns 0.
    int registerClient();

    /// Ends the administration once no account is stored any more. Returns 0.
    int deregisterClient();

    /// Wipes the internal storage at once. Returns 0.
    int factoryReset();

    /// Enforces the merged policy of the stored accounts, publishes what is outstanding in the device's keys and sends
    /// the wearer to the lock popup. Returns TESK_POLICY_PASSWORD_REQUIRED when it did the latter, else 0.
    int applyPolicy();

    /// Runs applyPolicy() and logs, in the caller's name, when it demands a stronger lock.
    void applyPolicyAndWarn(const TeskConsumerPlace& place = TeskConsumerPlace::here());

    /// The merged policy of the stored accounts.
    std::shared_ptr<TeskPolicyData> getStrongPolicy();

    /// Whether encryption must be asked for now. Returns 0, or -1 and leaves *required alone.
    int getIsRequiredDeviceEncryption(bool* required);

    /// Whether the device is encrypted. A state that cannot be read counts as encrypted.
    bool isDeviceEncrypted();

    /// The least password length, in characters, in the device's country. Returns 0.
    int getCountryMinPasswordLength(int* length);

private:
    int __callWhileNoAccountIsStored(int (ITeskConsumerPolicyAdapter::*operation)(),
                                     const TeskConsumerPlace& place = TeskConsumerPlace::here());
    int __getPasswordEnforcingAccountId(int* accountId);
    bool __getOdeEnforceFlag(const std::shared_ptr<TeskPolicyData>& policy);
    bool __getPasswordEnforceFlag(const std::shared_ptr<TeskPolicyData>& policy);

    // steps of the operations above, in whose name they log
    bool __readCurrentRules(TeskPasswordRules& current, const TeskConsumerPlace& place = TeskConsumerPlace::here());
    void __migrateQuality(TeskPasswordRules& current, const TeskConsumerPlace& place);
    int __countryMinLengthFor(const TeskPolicyData& policy);
    void __apply(const TeskPolicyData& policy, const TeskConsumerPlace& place);
    void __applyPasswordRules(const TeskPolicySettings& settings, const TeskConsumerPlace& place);
    void __applyRestrictions(const TeskPolicySettings& settings, const TeskConsumerPlace& place);
    void __applyEncryption(const TeskPolicySettings& settings, const TeskConsumerPlace& place);
    void __publishEncryption(bool enforce, const TeskConsumerPlace& place);
    void __publishPassword(bool enforce, const TeskConsumerPlace& place);

    std::unique_ptr<ITeskConsumerPolicyAdapter> adapter;
};

#endif
