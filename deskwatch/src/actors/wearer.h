#ifndef DESKWATCH_WEARER_H
#define DESKWATCH_WEARER_H

#include <optional>

#include "device/device.h"
#include "device/first_settings.h"

namespace deskwatch {

/// What the wearer can say to the popup that asks for a lock.
enum class PopupAnswer { Ok, SyncOff, Dismiss };

// What the wearer does on a booted watch. Each returns when the service, if it runs, has handled it and the
// applications that it launched then have received their launch requests. Each throws Refusal when the watch does not
// allow it, and std::runtime_error when the watch is not booted or an application does not answer.

/// Answers the popup's oldest question. Starts the mail application if it may receive a message. Refused when no popup
/// asks, or nobody waits for the answer any more.
void answerPopup(const Device& device, PopupAnswer answer);

/// Sets the screen's lock as the lock settings would. Without a length it is the shortest that is allowed. Returns the
/// length; refused when the device policy manager requires more.
int setLock(const Device& device, Lock lock, std::optional<int> length);

/// Has the internal storage encrypted. False when it was encrypted already.
bool encrypt(const Device& device);

/// Starts or ends the tutorial of the first use.
void setTutorial(const Device& device, bool isInProgress);

} // namespace deskwatch

#endif
