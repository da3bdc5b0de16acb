#include "msgs/TeskConsumerPolicyStorage.h"

#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerPolicyMgr.h"

void TeskConsumerPolicyStorage::storeAndApply(const TeskConsumerPolicyInfoList& policies) {
    for (const auto& policy : policies) {
        if (policy) {
            TeskConsumerAccountMgr::getInstance()->addAccount(policy->getPolicyData());
        }
    }
    TeskConsumerPolicyMgr::getInstance()->applyPolicyAndWarn();
}

void TeskConsumerPolicyStorage::wipeDevice() {
    TeskConsumerPolicyMgr::getInstance()->factoryReset();
}
