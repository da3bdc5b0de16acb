#include "TeskConsumer.h"

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerInstance.h"
#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerKiller.h"
#include "TeskConsumerLockMgr.h"
#include "TeskConsumerLog.h"
#include "TeskConsumerPolicyMgr.h"
#include "TeskConsumerPreferenceProxy.h"
#include "TestDbus.h"

namespace {

bool openPort(const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    auto* const ipcMgr = TeskConsumerIpcMgr::getInstance();
    if (ipcMgr == nullptr) {
        TESK_ERROR_AT(place, "TeskConsumerIpcMgr::getInstance() failed");
        return false;
    }
    if (!ipcMgr->init()) {
        TESK_ERROR_AT(place, "ipcMgr->init() failed");
        return false;
    }
    return true;
}

/// A device forgets nothing, but a setting may have been changed while the service did not run.
void enforceStoredPolicies(TeskConsumerDbMgr& dbMgr, const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    int count = 0;
    dbMgr.getAllEasAccountCount(&count);
    if (count != 0) {
        TeskConsumerPolicyMgr::getInstance()->applyPolicyAndWarn(place);
    }
}

} // namespace

TeskConsumer* TeskConsumer::getInstance() {
    return teskConsumerInstance<TeskConsumer>();
}

TeskConsumer::TeskConsumer() : callbacks() {
    const TeskConsumerTrace trace;
}

TeskConsumer::~TeskConsumer() {
    const TeskConsumerTrace trace;
}

void TeskConsumer::init() {
    const TeskConsumerTrace trace;
    callbacks.create = appCreated;
    callbacks.terminate = appTerminated;
    callbacks.app_control = appControl;

    const auto listen = [this](app_event_type_e event, app_event_cb callback) {
        service_app_add_event_handler(&handlers.at(event), event, callback, this);
    };
    listen(APP_EVENT_LOW_MEMORY, appLowMemory);
    listen(APP_EVENT_LOW_BATTERY, appLowBattery);
    listen(APP_EVENT_DEVICE_ORIENTATION_CHANGED, appDeviceOrientationChanged);
}

int TeskConsumer::start(int argc, char** argv) {
    const TeskConsumerTrace trace;
    return service_app_main(argc, argv, &callbacks, this);
}

void TeskConsumer::deinit() {
    const TeskConsumerTrace trace;
    service_app_exit();
}

bool TeskConsumer::appCreated(void* /*userData*/) {
    const TeskConsumerTrace trace;
    TestDbus::init();
    TeskConsumerKiller::getInstance()->init();
    TeskConsumerPreferenceProxy::init();

    auto* const dbMgr = TeskConsumerDbMgr::getInstance();
    if (dbMgr == nullptr) {
        TESK_ERROR("TeskConsumerDbMgr::getInstance() failed");
        return false;
    }
    if (!openPort()) {
        return false;
    }
    TeskConsumerLockMgr::getInstance()->init();
    enforceStoredPolicies(*dbMgr);
    return true;
}

void TeskConsumer::appTerminated(void* /*userData*/) {
    const TeskConsumerTrace trace;
    if (TeskConsumerIpcMgr::getInstance() == nullptr) {
        TESK_WARN("TeskConsumerIpcMgr::getInstance() failed");
    }
    if (!TeskConsumerIpcMgr::deinit()) {
        TESK_WARN("ipcMgr->init() failed");
    }
}

void TeskConsumer::appControl(app_control_h /*appControl*/, void* /*userData*/) {
    const TeskConsumerTrace trace;
    TeskConsumerKiller::getInstance()->tryStartKillTimer();
}

void TeskConsumer::appLowMemory(app_event_info_h /*event*/, void* /*userData*/) {
    const TeskConsumerTrace trace;
    TESK_WARN("Low memory!");
}

void TeskConsumer::appLowBattery(app_event_info_h /*event*/, void* /*userData*/) {
    const TeskConsumerTrace trace;
    TESK_WARN("Low battery!");
}

void TeskConsumer::appDeviceOrientationChanged(app_event_info_h /*event*/, void* /*userData*/) {
    const TeskConsumerTrace trace;
}
