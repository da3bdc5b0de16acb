#include "msgs/TeskConsumerPolicyStorage.h"

#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerPolicyMgr.h"

void TeskConsumerPolicyStorage::storeAndApply(const TeskConsumerPolicyInfoList& policies) {
    auto* const accountMgr = TeskConsumerAccountMgr::getInstance();
    auto* const policyMgr = TeskConsumerPolicyMgr::getInstance();
    for (const auto& policy : policies) {
        if (policy) {
            accountMgr->addAccount(policy->getPolicyData());
        }
    }
    policyMgr->applyPolicyAndWarn();
}

void TeskConsumerPolicyStorage::wipeDevice() {
    TeskConsumerPolicyMgr::getInstance()->factoryReset();
}
