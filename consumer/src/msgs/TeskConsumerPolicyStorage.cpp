#include "msgs/TeskConsumerPolicyStorage.h"

#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerPolicyMgr.h"

void TeskConsumerPolicyStorage::storeAndApply(const TeskConsumerPolicyInfoList& policies,
                                              const TeskConsumerPlace& place) {
    auto* const accountMgr = TeskConsumerAccountMgr::getInstance();
    TeskConsumerPolicyMgr::getInstance(); // made now, and tried again for each account where that fails
    for (const auto& policy : policies) {
        if (policy) {
            accountMgr->addAccount(policy->getPolicyData());
        }
    }
    TeskConsumerPolicyMgr::getInstance()->applyPolicyAndWarn(place);
}

void TeskConsumerPolicyStorage::wipeDevice() {
    TeskConsumerPolicyMgr::getInstance()->factoryReset();
}
