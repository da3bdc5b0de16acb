#include "actors/lock_screen_use.h"

#include <limits>

#include "TeskConsumerKeys.h"
#include "actors/refusal.h"
#include "c_owners.h"
#include "device/application_ids.h"
#include "records/log_line.h"
#include "session/device_policy.h"
#include "session/device_session.h"
#include "session/lock_rules.h"
#include "session/lock_screen.h"
#include "session/shared_keys.h"

namespace deskwatch {
namespace {

constexpr int anyLength = std::numeric_limits<int>::max();

/// The lock screen of a watch, which it speaks to as the lock settings.
class LockScreenInUse {
public:
    explicit LockScreenInUse(const Device& device) : session_(device, ids::lockSettings) {
        const c::ObjectOwner<DConfClient> store(dconf_client_new());
        limits_ = lockLimits(readDevicePolicy(store.get()));
        screen_ = readLockScreen(store.get());
    }

    const LockLimits& limits() const { return limits_; }
    const LockScreen& screen() const { return screen_; }

    static bool hasLock() {
        const Value lock = readKey(TeskConsumerKeys::lockType);
        return lock != Value() && lock != Value(static_cast<int>(Lock::None));
    }

    static void requireLock() {
        if (!hasLock()) {
            throw Refusal("the watch has no lock; set one with: " + commandForLock());
        }
    }

    /// The command that sets a lock which the policy allows.
    static std::string commandForLock() {
        const bool isPinEnough = !refusalOf({Lock::Pin, anyLength}, readLockDemand());
        return std::string("deskwatch lock ") + (isPinEnough ? "pin" : "password");
    }

    /// Leaves a line in the log for what was done, and returns the same text.
    std::string told(std::string text) const {
        addLogLine(session_.device().layout().log(), lockScreenTag, text);
        return text;
    }

    void change(const LockScreen& screen) {
        writeLockScreen(screen);
        screen_ = screen;
    }

private:
    DeviceSession session_;
    LockLimits limits_;
    LockScreen screen_;
};

} // namespace

std::string enterWrongPassword(const Device& device, int times) {
    LockScreenInUse use(device);
    LockScreenInUse::requireLock();
    const auto screen = afterWrongPasswords(use.screen(), times, use.limits());
    use.change(screen);
    auto text = use.told(wrongAttemptText(screen, use.limits()));
    if (hasToWipe(screen, use.limits())) {
        if (const int result = wipeInternalStorage(); result != 0) {
            throw Refusal(text + ", but the platform refuses it with " + std::to_string(result));
        }
        use.change({0, screen.passwordAge, true}); // the attempts are counted anew
    }
    return text;
}

std::string unlock(const Device& device) {
    LockScreenInUse use(device);
    LockScreenInUse::requireLock();
    if (isExpired(use.screen(), use.limits())) {
        throw Refusal(passwordAgeText(use.screen(), use.limits()) + ": " + LockScreenInUse::commandForLock());
    }
    use.change({0, use.screen().passwordAge, false});
    return use.told("the watch is unlocked");
}

std::string leaveAlone(const Device& device, int seconds) {
    LockScreenInUse use(device);
    if (!LockScreenInUse::hasLock()) {
        return use.told("the watch stays unlocked: it has no lock");
    }
    const int limit = use.limits().inactivity;
    if (limit > 0 && seconds >= limit) {
        use.change({use.screen().wrongAttempts, use.screen().passwordAge, true});
    }
    return use.told(inactivityText(use.screen(), use.limits()));
}

std::string agePassword(const Device& device, int days) {
    LockScreenInUse use(device);
    LockScreenInUse::requireLock();
    use.change({use.screen().wrongAttempts, days, use.screen().isLocked});
    return use.told(passwordAgeText(use.screen(), use.limits()));
}

} // namespace deskwatch
