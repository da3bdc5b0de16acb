#include "fuzzed_watch.h"

#include <gio/gio.h>

#include "fuzz_target.h"

// The service asks for a name on the system bus at every start. GLib would look for that bus in a thread, which would
// outlive the input.
extern "C" guint __wrap_g_bus_own_name(GBusType /*bus*/, const gchar* /*name*/, GBusNameOwnerFlags /*flags*/,
                                       GBusAcquiredCallback /*busAcquired*/, GBusNameAcquiredCallback /*nameAcquired*/,
                                       GBusNameLostCallback /*nameLost*/, gpointer /*userData*/,
                                       GDestroyNotify /*release*/) {
    return 1;
}

namespace fuzz {

FuzzedWatch::FuzzedWatch() {
    endFaults(*this);
    platform.journal.isKept = false;
}

bool FuzzedWatch::runOnce(const std::function<void()>& meanwhile) {
    bool isUp = false;
    run([&] {
        isUp = true;
        meanwhile();
    });
    requireNothingLeaked();
    endProcess();
    return isUp;
}

void FuzzedWatch::requireNothingLeaked() const {
    const auto leaks = platform.leaks();
    require(leaks.empty(), "nothing is leaked: " + (leaks.empty() ? "" : leaks.front()));
}

void endFaults(harness::Watch& watch) {
    watch.platform.faults = {};
    // what it returns is kept until the process ends: a leak where one process plays many
    watch.platform.faults.always("g_dbus_node_info_new_for_xml");
}

} // namespace fuzz
