#ifndef DESKWATCH_WATCH_ANSWER_H
#define DESKWATCH_WATCH_ANSWER_H

#include <optional>

#include "accounts/compliance.h"
#include "accounts/mail_account.h"
#include "session/device_session.h"

namespace deskwatch {

/// What a watch has done with an account's pending policy, which the service got. Waits for the wearer up to a number
/// of seconds; none when he has not acted by then. Throws std::runtime_error when the watch cannot be read.
std::optional<Verdict> awaitVerdict(const DeviceSession& session, const MailAccount& account, int seconds);

} // namespace deskwatch

#endif
