#include "TeskConsumerLockMgr.h"

#include "TeskConsumerInstance.h"
#include "TeskConsumerKeys.h"
#include "TeskConsumerLog.h"
#include "TeskConsumerPolicyMgr.h"
#include "TeskConsumerUtil.h"

namespace {

/// The integer of a key, 0 when it cannot be read.
int keyValue(const char* key) {
    int value = 0;
    return vconf_get_int(key, &value) == 0 ? value : 0;
}

void lockWasSet() {
    // written first, so that the next change of the lock finds nothing left to do
    vconf_set_int(TeskConsumerKeys::passwordPolicyApplied, 1);
    bool encryptionRequired = false;
    const int result = TeskConsumerPolicyMgr::getInstance()->getIsRequiredDeviceEncryption(&encryptionRequired);
    if (result == 0 && encryptionRequired) {
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
    return vconf_notify_key_changed(TeskConsumerKeys::lockType, __lockTypeChangedCb, nullptr);
}

int TeskConsumerLockMgr::getLockType() {
    const TeskConsumerTrace trace;
    return keyValue(TeskConsumerKeys::lockType);
}

void TeskConsumerLockMgr::__lockTypeChangedCb(keynode_t* /*node*/, void* /*userData*/) {
    const TeskConsumerTrace trace;
    if (keyValue(TeskConsumerKeys::passwordPolicyApplied) != 0) {
        TESK_WARN("Failed to get password policy applied value");
        return;
    }
    if (keyValue(TeskConsumerKeys::lockType) != 0) {
        lockWasSet();
    }
    TeskConsumerUtil::launchQuillonConsumer();
}
