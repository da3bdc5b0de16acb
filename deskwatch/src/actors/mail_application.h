#ifndef DESKWATCH_MAIL_APPLICATION_H
#define DESKWATCH_MAIL_APPLICATION_H

#include <vector>

#include "actors/request.h"
#include "actors/request_outcome.h"
#include "session/device_session.h"

namespace deskwatch {

/// The most bytes that the argument of a request may have, for the message to fit the port.
std::size_t largestArgument(const std::string& request);

/// Sends requests to the service as the mail application of the watch, in order, and tells what became of each. Returns
/// when the service has handled them and the applications that it launched have received their launch requests. A
/// service that ends before it has handled a request is launched again and gets it once more, except for a wipe. Throws
/// std::runtime_error when the watch is not booted, or the service does not come up or ends each time.
std::vector<RequestOutcome> sendAsMailApplication(const Device& device, const std::vector<Request>& requests);

/// The same for a process that is on the watch as its mail application already.
std::vector<RequestOutcome> sendAsMailApplication(const DeviceSession& session, const std::vector<Request>& requests);

} // namespace deskwatch

#endif
