#include "instances.h"

#include <utility>

#include "TeskConsumer.h"
#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerDbMgr.h"
#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerKiller.h"
#include "TeskConsumerLockMgr.h"
#include "TeskConsumerPolicyMgr.h"

// Each instance is a static variable in teskConsumerInstance(), which nothing but its linker symbol reaches. Whoever
// asks for an instance instead would make those that do not exist yet, and could not take their pointer back. A
// variable that goes away or is renamed shows when this is linked.
namespace slots {

extern TeskConsumer* consumer __asm__("_ZZ20teskConsumerInstanceI12TeskConsumerEPT_vE8instance");
extern TeskConsumerAccountMgr* accountMgr __asm__("_ZZ20teskConsumerInstanceI22TeskConsumerAccountMgrEPT_vE8instance");
extern TeskConsumerDbMgr* dbMgr __asm__("_ZZ20teskConsumerInstanceI17TeskConsumerDbMgrEPT_vE8instance");
extern TeskConsumerIpcMgr* ipcMgr __asm__("_ZZ20teskConsumerInstanceI18TeskConsumerIpcMgrEPT_vE8instance");
extern TeskConsumerKiller* killer __asm__("_ZZ20teskConsumerInstanceI18TeskConsumerKillerEPT_vE8instance");
extern TeskConsumerLockMgr* lockMgr __asm__("_ZZ20teskConsumerInstanceI19TeskConsumerLockMgrEPT_vE8instance");
extern TeskConsumerPolicyMgr* policyMgr __asm__("_ZZ20teskConsumerInstanceI21TeskConsumerPolicyMgrEPT_vE8instance");

} // namespace slots

namespace {

template <class Manager>
void end(Manager*& instance) {
    delete std::exchange(instance, nullptr);
}

} // namespace

// Those that use others go before those that they use.
void instances::endAll() {
    end(slots::consumer);
    end(slots::killer);
    end(slots::lockMgr);
    end(slots::ipcMgr);
    end(slots::accountMgr);
    end(slots::policyMgr);
    end(slots::dbMgr);
}
