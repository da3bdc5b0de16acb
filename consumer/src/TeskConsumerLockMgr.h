#ifndef TESK_CONSUMER_LOCK_MGR_H
#define TESK_CONSUMER_LOCK_MGR_H

#include <vconf.h>

/// Notices that the wearer has set a lock, and hands control back to the mail application.
class TeskConsumerLockMgr {
public:
    /// The process's one instance.
    static TeskConsumerLockMgr* getInstance();

    TeskConsumerLockMgr();
    virtual ~TeskConsumerLockMgr();
    TeskConsumerLockMgr(const TeskConsumerLockMgr&) = delete;
    TeskConsumerLockMgr& operator=(const TeskConsumerLockMgr&) = delete;

    /// Watches the lock type. Returns the platform's code.
    int init();

    /// The lock that the wearer has set, 0 for none or when it cannot be read.
    int getLockType();

private:
    static void __lockTypeChangedCb(keynode_t* node, void* userData);
};

#endif
