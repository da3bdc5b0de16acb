#include "fuzzed_service.h"

#include <gio/gio.h>
#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <memory>

#include "fuzz_target.h"
#include "instances.h"

/// The service's main, which the build gives this name so that libFuzzer's stays the only one.
int teskMain(int argc, char** argv);

// The service asks for a name on the system bus at every start. GLib would look for that bus in a thread, which would
// outlive the input.
extern "C" guint __wrap_g_bus_own_name(GBusType bus, const gchar* name, GBusNameOwnerFlags flags,
                                       GBusAcquiredCallback busAcquired, GBusNameAcquiredCallback nameAcquired,
                                       GBusNameLostCallback nameLost, gpointer userData, GDestroyNotify release);

extern "C" guint __wrap_g_bus_own_name(GBusType /*bus*/, const gchar* /*name*/, GBusNameOwnerFlags /*flags*/,
                                       GBusAcquiredCallback /*busAcquired*/, GBusNameAcquiredCallback /*nameAcquired*/,
                                       GBusNameLostCallback /*nameLost*/, gpointer /*userData*/,
                                       GDestroyNotify /*release*/) {
    return 1;
}

namespace fuzz {

FuzzedService::FuzzedService() {
    makeGlibWarningsFatal();
    endFaults();
    platform.journal.isKept = false;
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "unencrypted");
    platform.settings.setKeyAsDevice("db/rgn/country_iso", "GB");
    platform.settings.setKeyAsDevice("db/setting/lock_type", 0);
}

FuzzedService::~FuzzedService() {
    instances::endAll();
}

bool FuzzedService::run(const std::function<void()>& meanwhile) {
    bool isUp = false;
    platform.service.duringMainLoop = [&] {
        isUp = true;
        meanwhile();
    };
    std::string name = "tesk-agent";
    std::array<char*, 2> arguments{name.data(), nullptr};
    teskMain(1, arguments.data());
    requireNothingLeaked();
    instances::endAll();
    platform.endProcess();
    return isUp;
}

void FuzzedService::request(const std::optional<std::string>& name, const std::optional<std::string>& argument) {
    if (platform.ports.find("eas-itpolicy-port") != nullptr) {
        platform.ports.deliver(name, argument);
    }
    platform.deliverPending();
}

void FuzzedService::endFaults() {
    platform.faults = {};
    // what it returns is kept until the process ends: a leak where one process plays many
    platform.faults.always("g_dbus_node_info_new_for_xml");
}

void FuzzedService::requireNothingLeaked() const {
    const auto leaks = platform.leaks();
    require(leaks.empty(), "nothing is leaked: " + (leaks.empty() ? "" : leaks.front()));
}

void FuzzedService::requireSoundDatabase() const {
    if (!std::filesystem::exists(databasePath())) {
        return;
    }
    sqlite3* opened = nullptr;
    require(sqlite3_open(databasePath().c_str(), &opened) == SQLITE_OK, "the database can be opened");
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, &sqlite3_close);
    std::string answer;
    const auto append = [](void* text, int count, char** values, char** /*names*/) {
        *static_cast<std::string*>(text) += count > 0 && values[0] != nullptr ? values[0] : "";
        return 0;
    };
    sqlite3_exec(opened, "PRAGMA integrity_check", append, &answer, nullptr);
    require(answer == "ok", "the database is in order: " + answer);
}

} // namespace fuzz
