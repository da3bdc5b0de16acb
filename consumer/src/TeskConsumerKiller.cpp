#include "TeskConsumerKiller.h"

#include <vconf.h>

#include "TeskConsumer.h"
#include "TeskConsumerInstance.h"
#include "TeskConsumerKeys.h"
#include "TeskConsumerLog.h"
#include "TeskConsumerVconf.h"

namespace {

constexpr guint exitDelaySeconds = 10;

} // namespace

TeskConsumerKiller* TeskConsumerKiller::getInstance() {
    return teskConsumerInstance<TeskConsumerKiller>();
}

TeskConsumerKiller::TeskConsumerKiller() {
    TESK_INFO("");
}

TeskConsumerKiller::~TeskConsumerKiller() {
    TESK_INFO("");
}

void TeskConsumerKiller::init() {
    const TeskConsumerTrace trace;
    const auto keyChanged = [](keynode_t* /*node*/, void* killer) {
        TESK_INFO("");
        static_cast<TeskConsumerKiller*>(killer)->tryStartKillTimer();
    };
    vconf_notify_key_changed(TeskConsumerKeys::passwordPolicyApplied, keyChanged, this);
    vconf_notify_key_changed(TeskConsumerKeys::deviceEncryptionApplied, keyChanged, this);
}

void TeskConsumerKiller::tryStartKillTimer() {
    const TeskConsumerTrace trace;
    if (__canBeKilled()) {
        __refreshKiller();
    } else {
        __stopKiller();
    }
}

bool TeskConsumerKiller::__canBeKilled() {
    const TeskConsumerTrace trace;
    const int passwordApplied = TeskConsumerVconf::get(TeskConsumerKeys::passwordPolicyApplied);
    if (passwordApplied == 0) {
        TESK_WARN("Password is not crated yet.");
    }
    const int encryptionApplied = TeskConsumerVconf::get(TeskConsumerKeys::deviceEncryptionApplied);
    if (encryptionApplied == 0) {
        TESK_WARN("Encryption is not completed yet.");
    }
    const bool killable = passwordApplied != 0 && encryptionApplied != 0;
    TESK_WARN("consumer can be killed: [%s]", killable ? "true" : "false");
    return killable;
}

void TeskConsumerKiller::__refreshKiller() {
    const TeskConsumerTrace trace;
    TESK_WARN("REFRESH killer!");
    __removeTimer();
    const auto exitTimer = [](gpointer /*data*/) -> gboolean {
        TESK_INFO("");
        getInstance()->timerId = 0; // GLib removes the source after this call
        TeskConsumer::getInstance()->deinit();
        return G_SOURCE_REMOVE;
    };
    timerId = g_timeout_add_seconds(exitDelaySeconds, exitTimer, nullptr);
}

void TeskConsumerKiller::__stopKiller() {
    const TeskConsumerTrace trace;
    TESK_WARN("STOP killer!");
    __removeTimer();
}

void TeskConsumerKiller::__removeTimer() {
    if (timerId != 0) {
        g_source_remove(timerId);
        timerId = 0;
    }
}
