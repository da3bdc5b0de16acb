#include "recording/recorded_state.h"

#include <dconf.h>

#include <algorithm>
#include <iterator>

#include "device/application_ids.h"
#include "host_bus.h"
#include "recording/recorded_store.h"
#include "records/policy_database.h"

namespace deskwatch {
namespace {

/// Takes the settings of a folder, which ends in a slash, and of those in it.
void takeFolder(DConfClient* store, const std::string& folder, RecordedState& state) {
    if (folder == host_bus::keyMarksPath) {
        return; // each key has one, which says nothing
    }
    const c::TextListOwner names(dconf_client_list(store, folder.c_str(), nullptr));
    for (char** name = names.get(); name != nullptr && *name != nullptr; ++name) {
        const std::string path = folder + *name;
        if (path.back() == '/') {
            takeFolder(store, path, state);
        } else {
            const c::VariantOwner value(dconf_client_read(store, path.c_str()));
            state.settings[path] = settingOf(path, value.get());
        }
    }
}

} // namespace

RecordedState readState(const DeviceSession& session) {
    RecordedState state;
    const auto daemon = session.daemon();
    state.isServiceRunning = daemon.isOwned(ids::service);
    if (state.isServiceRunning) {
        state.waiting = session.settle(ids::service);
    }
    std::copy_if(ids::companions.begin(), ids::companions.end(), std::back_inserter(state.running),
                 [&](const char* id) { return daemon.isOwned(id); });
    const c::ObjectOwner<DConfClient> store(dconf_client_new());
    const std::string service = ids::service;
    for (const auto& folder : {std::string(host_bus::sharedKeysPath), std::string("/dpm/"), "/apps/" + service + "/",
                               "/faults/" + service + "/"}) {
        takeFolder(store.get(), folder, state);
    }
    state.store = recordedStore(policyDatabase(session.device().layout())).dump();
    return state;
}

TraceEvent headOf(const RecordedState& state) {
    return {{"recording", recordingVersion}, {"serviceRunning", state.isServiceRunning},
            {"running", state.running},      {"waiting", state.waiting},
            {"settings", state.settings},    {"store", TraceEvent::parse(state.store)}};
}

} // namespace deskwatch
