#include "session/lock_screen.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

#include "c_owners.h"
#include "session/setting_value.h"

namespace deskwatch {
namespace {

// Beside the paths of the platform, so that neither the service nor a recording hears of them.
constexpr char wrongAttemptsPath[] = "/desk/lock-screen/wrong-attempts";
constexpr char passwordAgePath[] = "/desk/lock-screen/password-age";
constexpr char isLockedPath[] = "/desk/lock-screen/is-locked";

int readNumber(DConfClient* store, const char* path) {
    const Value value = readSetting(store, path);
    const int* const number = std::get_if<int>(&value);
    return number != nullptr ? *number : 0;
}

int valueOf(const SettingValues& settings, std::string_view name) {
    const auto* const setting = std::find_if(deviceSettings.begin(), deviceSettings.end(),
                                             [&](const DeviceSetting& entry) { return entry.name == name; });
    return settings.at(static_cast<std::size_t>(setting - deviceSettings.begin())).value_or(0);
}

std::string days(int count) {
    return std::to_string(count) + (count == 1 ? " day" : " days");
}

} // namespace

LockLimits lockLimits(const SettingValues& settings) {
    return {valueOf(settings, "maximum_failed_attempts_for_wipe"), valueOf(settings, "max_inactivity_time_device_lock"),
            valueOf(settings, "expires")};
}

LockScreen afterWrongPasswords(const LockScreen& before, int count, const LockLimits& limits) {
    constexpr int noLimit = 1'000'000'000;
    const int most = limits.wrongAttempts > 0 ? std::max(limits.wrongAttempts, before.wrongAttempts + 1) : noLimit;
    return {before.wrongAttempts + std::min(count, most - before.wrongAttempts), before.passwordAge, true};
}

bool hasToWipe(const LockScreen& screen, const LockLimits& limits) {
    return limits.wrongAttempts > 0 && screen.wrongAttempts >= limits.wrongAttempts;
}

bool isExpired(const LockScreen& screen, const LockLimits& limits) {
    return limits.passwordAge > 0 && screen.passwordAge >= limits.passwordAge;
}

std::string wrongAttemptText(const LockScreen& screen, const LockLimits& limits) {
    const auto attempt = "wrong password, attempt " + std::to_string(screen.wrongAttempts);
    if (limits.wrongAttempts == 0) {
        return attempt + ": no setting limits the attempts";
    }
    const int left = limits.wrongAttempts - screen.wrongAttempts;
    return attempt + " of " + std::to_string(limits.wrongAttempts) +
           (left <= 0   ? ": the watch wipes itself"
            : left == 1 ? ": after the next one the watch wipes itself"
                        : "");
}

std::string passwordAgeText(const LockScreen& screen, const LockLimits& limits) {
    const auto age = "the password is " + days(screen.passwordAge) + " old";
    return limits.passwordAge == 0 ? age + "; no setting lets it expire"
           : isExpired(screen, limits)
               ? age + ": it has expired after " + days(limits.passwordAge) + ", and the wearer has to set another"
               : age + "; it expires after " + days(limits.passwordAge);
}

std::string inactivityText(const LockScreen& screen, const LockLimits& limits) {
    const auto limit = std::to_string(limits.inactivity) + " s without use";
    return screen.isLocked          ? "the watch is locked"
           : limits.inactivity == 0 ? "the watch stays unlocked: no setting locks it"
                                    : "the watch stays unlocked; it locks itself after " + limit;
}

LockScreen readLockScreen(DConfClient* store) {
    return {readNumber(store, wrongAttemptsPath), readNumber(store, passwordAgePath),
            readNumber(store, isLockedPath) != 0};
}

void writeLockScreen(const LockScreen& screen) {
    const c::ObjectOwner<DConfClient> store(dconf_client_new());
    const c::Owner<DConfChangeset, dconf_changeset_unref> changes(dconf_changeset_new());
    dconf_changeset_set(changes.get(), wrongAttemptsPath, g_variant_new_int32(screen.wrongAttempts));
    dconf_changeset_set(changes.get(), passwordAgePath, g_variant_new_int32(screen.passwordAge));
    dconf_changeset_set(changes.get(), isLockedPath, g_variant_new_int32(screen.isLocked ? 1 : 0));
    GError* error = nullptr;
    if (dconf_client_change_sync(store.get(), changes.get(), nullptr, nullptr, &error) == FALSE) {
        throw std::runtime_error("cannot write the state of the lock screen: " + c::takeMessage(error));
    }
}

} // namespace deskwatch
