#ifndef DESKWATCH_MAIL_APPLICATION_H
#define DESKWATCH_MAIL_APPLICATION_H

#include <functional>
#include <string>
#include <vector>

#include "actors/request.h"
#include "actors/request_outcome.h"
#include "session/device_session.h"

namespace deskwatch {

/// The most bytes that the argument of a request may have, for the message to fit the port.
std::size_t largestArgument(const std::string& request);

/// Why the port refuses a request that is too long; empty when it is not.
std::string whyTooLong(const Request& request);

/// Sends requests to the service, for a process that is on the watch as its mail application, in order, and tells what
/// became of each as soon as the service has handled it. Returns when the applications that the service launched have
/// received their launch requests. A service that ends before it has handled a request is launched again and gets it
/// once more, except for a wipe. Throws std::runtime_error when one is too long, before anything is sent, and when the
/// service does not come up or ends each time.
void sendAsMailApplication(const DeviceSession& session, const std::vector<Request>& requests,
                           const std::function<void(const RequestOutcome& outcome)>& tell);

} // namespace deskwatch

#endif
