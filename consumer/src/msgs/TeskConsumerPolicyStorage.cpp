#include "msgs/TeskConsumerPolicyStorage.h"

#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerPolicyMgr.h"

void TeskConsumerPolicyStorage::storeAndApply(const TeskConsumerPolicyInfoList& policies) {
    auto* const accountMgr = TeskConsumerAccountMgr::getInstance();
    TeskConsumerPolicyMgr::getInstance(); // made now, and tried again for each account where that fails
    for (const auto& policy : policies) {
        if (policy) {
            accountMgr->addAccount(policy->getPolicyData());
        }
    }
    TeskConsumerPolicyMgr::getInstance()->applyPolicyAndWarn();
}

void TeskConsumerPolicyStorage::wipeDevice() {
    TeskConsumerPolicyMgr::getInstance()->factoryReset();
}
