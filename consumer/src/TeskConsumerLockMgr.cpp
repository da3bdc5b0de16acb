#include "TeskConsumerLockMgr.h"

#include "TeskConsumerInstance.h"
#include "TeskConsumerKeys.h"
#include "TeskConsumerLog.h"
#include "TeskConsumerPolicyMgr.h"
#include "TeskConsumerUtil.h"
#include "TeskConsumerVconf.h"

namespace {

void askForEncryption() {
    bool required = false;
    if (TeskConsumerPolicyMgr::getInstance()->getIsRequiredDeviceEncryption(&required) == 0 && required) {
        TeskConsumerUtil::launchOdePopup();
    }
}

} // namespace

TeskConsumerLockMgr* TeskConsumerLockMgr::getInstance() {
    return teskConsumerInstance<TeskConsumerLockMgr>();
}

TeskConsumerLockMgr::TeskConsumerLockMgr() {
    TESK_INFO("");
}

TeskConsumerLockMgr::~TeskConsumerLockMgr() {
    TESK_INFO("");
}

int TeskConsumerLockMgr::init() {
    const int result = vconf_notify_key_changed(TeskConsumerKeys::lockType, __lockTypeChangedCb, nullptr);
    if (result != 0) {
        TESK_WARN("vconf_notify_key_changed(%s) failed: [%d]", TeskConsumerKeys::lockType, result);
    }
    return result;
}

int TeskConsumerLockMgr::getLockType() {
    const TeskConsumerTrace trace;
    return TeskConsumerVconf::get(TeskConsumerKeys::lockType);
}

void TeskConsumerLockMgr::__lockTypeChangedCb(keynode_t* /*node*/, void* /*userData*/) {
    const TeskConsumerTrace trace;
    if (TeskConsumerVconf::get(TeskConsumerKeys::passwordPolicyApplied) != 0) {
        TESK_WARN("Failed to get password policy applied value");
        return;
    }
    if (TeskConsumerVconf::get(TeskConsumerKeys::lockType) != 0) {
        // written first, so that the next change of the lock finds nothing left to do
        TeskConsumerVconf::set(TeskConsumerKeys::passwordPolicyApplied, 1);
        askForEncryption();
    }
    TeskConsumerUtil::launchQuillonConsumer();
}
