#ifndef DESKWATCH_WATCH_ANSWER_H
#define DESKWATCH_WATCH_ANSWER_H

#include <optional>

#include "accounts/compliance.h"
#include "session/device_session.h"

namespace deskwatch {

/// What a watch has done with a policy that the service got when the wearer had stopped synchronising so often. Waits
/// for the wearer up to a number of seconds; none when he has not acted by then. Throws std::runtime_error when the
/// watch cannot be read, or is switched off meanwhile.
std::optional<Verdict> awaitVerdict(const DeviceSession& session, const std::vector<ProvisioningElement>& elements,
                                    int stopsBefore, int seconds);

} // namespace deskwatch

#endif
