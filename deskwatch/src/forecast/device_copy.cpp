#include "forecast/device_copy.h"

#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "actors/mail_application.h"
#include "device/application_ids.h"
#include "device/bus_client.h"
#include "records/policy_database.h"
#include "session/platform_faults.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

/// The writer of the settings replaces the file and then marks the old one as void by zeros at its start.
bool isVoid(const fs::path& settings) {
    return std::ifstream(settings, std::ios::binary).get() == '\0';
}

void copySettings(const DeviceLayout& original, const DeviceLayout& copy) {
    constexpr int mostTries = 100;
    fs::create_directories(copy.settingsDatabase().parent_path());
    for (int tries = 0; tries < mostTries; ++tries) {
        fs::copy_file(original.settingsDatabase(), copy.settingsDatabase(), fs::copy_options::overwrite_existing);
        if (!isVoid(copy.settingsDatabase())) {
            return;
        }
    }
    throw std::runtime_error("cannot copy " + original.settingsDatabase().string() + ": it keeps changing");
}

void copyAccounts(const DeviceLayout& original, const DeviceLayout& copy) {
    copyStoredAccounts(policyDatabase(original), policyDatabase(copy));
}

/// Boots the copy. Returns whether the service of the original runs.
bool boot(const Device& original, const Device& copy) {
    const bool isServiceRunning =
        original.isBooted() && BusClient(original.busAddress(), original.patience()).daemon().isOwned(ids::service);
    setenv("DLOG_LEVEL", "I", 1); // also when the caller wants less: what the service logs is looked at
    copySettings(original.layout(), copy.layout());
    if (!isServiceRunning) {
        copyAccounts(original.layout(), copy.layout());
    }
    copy.resume(readApplications(original.layout()));
    return isServiceRunning;
}

} // namespace

DeviceCopy::DeviceCopy(const Device& original)
    : isServiceRunning_(boot(original, *copy_)), session_(*copy_, ids::mail) {
    if (isServiceRunning_) {
        startService(original);
    }
}

/// At its start the service enforces the stored policies; the running one did that long ago. So this one starts without
/// accounts and faults, and gets both when it runs.
void DeviceCopy::startService(const Device& original) const {
    const auto faults = readFaults();
    clearFaults(session_);
    sendAsMailApplication(session_, {}, [](const auto& /*outcome*/) {});
    copyAccounts(original.layout(), copy_->layout());
    for (const auto& fault : faults) {
        setFault(session_, fault);
    }
}

} // namespace deskwatch
