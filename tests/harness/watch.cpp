#include "watch.h"

#include <glib.h>

#include <array>

#include "TeskConsumer.h"
#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerDbMgr.h"
#include "TeskConsumerInstance.h"
#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerKiller.h"
#include "TeskConsumerLockMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "glib_warnings.h"
#include "service_main.h"

namespace harness {

Watch::Watch() {
    makeGlibWarningsFatal();
    // Whatever the service does on a bus must not reach the machine's.
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", TRUE);
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "unencrypted");
    platform.settings.setKeyAsDevice("db/rgn/country_iso", "GB");
    platform.settings.setKeyAsDevice("db/setting/lock_type", 0);
    platform.settings.deliverChanges();
}

int Watch::run(const std::function<void()>& meanwhile) {
    platform.service.duringMainLoop = meanwhile;
    std::string name = "tesk-agent";
    std::array<char*, 2> arguments{name.data(), nullptr};
    return teskMain(1, arguments.data());
}

void Watch::endProcess() {
    // those that use others go before those that they use
    teskConsumerResetInstance<TeskConsumer>();
    teskConsumerResetInstance<TeskConsumerKiller>();
    teskConsumerResetInstance<TeskConsumerLockMgr>();
    teskConsumerResetInstance<TeskConsumerIpcMgr>();
    teskConsumerResetInstance<TeskConsumerAccountMgr>();
    teskConsumerResetInstance<TeskConsumerPolicyMgr>();
    teskConsumerResetInstance<TeskConsumerDbMgr>();
    platform.endProcess();
}

void Watch::request(const std::optional<std::string>& name, const std::optional<std::string>& argument) {
    if (platform.ports.find("eas-itpolicy-port") != nullptr) {
        platform.ports.deliver(name, argument);
    }
    platform.deliverPending();
}

} // namespace harness
