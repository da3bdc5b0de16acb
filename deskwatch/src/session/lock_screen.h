#ifndef DESKWATCH_LOCK_SCREEN_H
#define DESKWATCH_LOCK_SCREEN_H

#include <dconf.h>

#include <string>

#include "session/device_settings.h"

namespace deskwatch {

/// What the lock screen of a watch remembers of its use, through a boot too. The service knows nothing of it.
struct LockScreen {
    /// Since the last right password.
    int wrongAttempts = 0;
    /// In days.
    int passwordAge = 0;
    bool isLocked = false;

    bool operator==(const LockScreen& other) const {
        return wrongAttempts == other.wrongAttempts && passwordAge == other.passwordAge && isLocked == other.isLocked;
    }
};

/// The settings of the device policy manager that the lock screen follows; 0 for no limit.
struct LockLimits {
    /// Wrong passwords until the watch wipes itself.
    int wrongAttempts = 0;
    /// Seconds without use until the screen locks itself.
    int inactivity = 0;
    /// Days after which a password has to be changed.
    int passwordAge = 0;
};

/// What of the settings concerns the lock screen.
LockLimits lockLimits(const SettingValues& settings);

/// Counts wrong passwords in a row. Stops at the one after which the watch wipes itself.
LockScreen afterWrongPasswords(const LockScreen& before, int count, const LockLimits& limits);

/// Whether the watch wipes itself now.
bool hasToWipe(const LockScreen& screen, const LockLimits& limits);

/// Whether the wearer has to set another password.
bool isExpired(const LockScreen& screen, const LockLimits& limits);

// What a use of the lock screen means, in words.
std::string wrongAttemptText(const LockScreen& screen, const LockLimits& limits);
std::string passwordAgeText(const LockScreen& screen, const LockLimits& limits);
std::string inactivityText(const LockScreen& screen, const LockLimits& limits);

/// Of the watch whose settings these are.
LockScreen readLockScreen(DConfClient* store);

/// To the watch that this process is on (see DeviceSession). Throws std::runtime_error.
void writeLockScreen(const LockScreen& screen);

} // namespace deskwatch

#endif
