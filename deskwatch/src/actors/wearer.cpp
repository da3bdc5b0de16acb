#include "actors/wearer.h"

#include <vconf.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "TeskConsumerKeys.h"
#include "actors/refusal.h"
#include "device/application_ids.h"
#include "device/bus_client.h"
#include "records/log_line.h"
#include "session/companion_bus.h"
#include "session/device_policy.h"
#include "session/device_session.h"
#include "session/lock_rules.h"
#include "session/lock_screen.h"

namespace deskwatch {
namespace {

constexpr int companionTimeout = 20'000;

void expectSet(int result, const std::string& key) {
    if (result != 0) {
        throw std::runtime_error("cannot set " + key);
    }
}

bool send(TeskDeskCompanion* popup, PopupAnswer answer, GError** error) {
    if (answer == PopupAnswer::Dismiss) {
        return tesk_desk_companion_call_dismiss_sync(popup, G_DBUS_CALL_FLAGS_NO_AUTO_START, companionTimeout, nullptr,
                                                     error) != FALSE;
    }
    const char* result = answer == PopupAnswer::Ok ? "ok" : "sync_off_ok";
    return tesk_desk_companion_call_answer_sync(popup, result, G_DBUS_CALL_FLAGS_NO_AUTO_START, companionTimeout,
                                                nullptr, error) != FALSE;
}

/// How many of the service's launch requests the popup has still to answer. What asked before the service started
/// anew waits for nobody.
std::ptrdiff_t openQuestions(const DeviceSession& session) {
    if (!session.daemon().isOwned(ids::service)) {
        return 0;
    }
    const auto outstanding = session.settle(ids::service);
    return std::count(outstanding.begin(), outstanding.end(), ids::popup);
}

} // namespace

void answerPopup(const Device& device, PopupAnswer answer) {
    const DeviceSession session(device, ids::popup);
    if (!session.daemon().isOwned(ids::popup)) {
        throw Refusal("no popup is open; deskwatch status shows which screens are");
    }
    session.settle(ids::popup);
    if (answer == PopupAnswer::SyncOff) {
        session.settle(ids::mail); // its port gets the service's request only while it runs
    }
    const auto questions = openQuestions(session);
    if (questions == 0) {
        throw Refusal("nobody waits for an answer from the popup");
    }
    const auto popup = companion_bus::companionOf(session.connection(), ids::popup);
    do {
        GError* error = nullptr;
        if (!send(popup.get(), answer, &error)) {
            throw Refusal("the popup does not accept an answer: " + c::takeMessage(error));
        }
        session.settleService();
    } while (openQuestions(session) == questions);
    if (answer == PopupAnswer::SyncOff) {
        session.settle(ids::mail);
    }
}

int setLock(const Device& device, Lock lock, std::optional<int> length) {
    const DeviceSession session(device, ids::lockSettings);
    const LockDemand demand = readLockDemand();
    const LockChoice choice{lock, lock == Lock::None ? 0 : length.value_or(proposedLength(demand))};
    if (const auto refusal = refusalOf(choice, demand)) {
        throw Refusal(*refusal);
    }
    expectSet(vconf_set_int(TeskConsumerKeys::lockType, static_cast<int>(lock)), TeskConsumerKeys::lockType);
    writeLockScreen({}); // a new password, and the wearer is past the lock screen
    addLogLine(device.layout().log(), lockScreenTag,
               lock == Lock::None ? "the lock is removed"
                                  : std::string("a ") + (lock == Lock::Pin ? "PIN" : "password") + " of " +
                                        std::to_string(choice.length) + " characters is set");
    session.settleService();
    return choice.length;
}

bool encrypt(const Device& device) {
    const DeviceSession session(device, ids::encryptionSettings);
    const std::unique_ptr<char, decltype(&std::free)> state(vconf_get_str(TeskConsumerKeys::cryptoState), &std::free);
    if (state != nullptr && std::string(state.get()) == "encrypted") {
        return false;
    }
    expectSet(vconf_set_str(TeskConsumerKeys::cryptoState, "encrypted"), TeskConsumerKeys::cryptoState);
    expectSet(vconf_set_int(TeskConsumerKeys::deviceEncryptionApplied, 1),
              TeskConsumerKeys::deviceEncryptionApplied); // who hears of it finds the state changed
    session.settleService();
    return true;
}

void setTutorial(const Device& device, bool isInProgress) {
    const DeviceSession session(device, ids::lockSettings);
    expectSet(vconf_set_int(TeskConsumerKeys::tutorialInProgress, isInProgress ? 1 : 0),
              TeskConsumerKeys::tutorialInProgress);
    session.settleService();
}

} // namespace deskwatch
