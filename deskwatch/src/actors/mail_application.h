#ifndef DESKWATCH_MAIL_APPLICATION_H
#define DESKWATCH_MAIL_APPLICATION_H

#include <string>
#include <vector>

#include "session/device_session.h"

namespace deskwatch {

/// A request of the mail application: its name and its argument.
struct Request {
    std::string name;
    std::string argument;
};

/// Sends requests to the service as the mail application of the watch, in order. Returns when the service has handled
/// them and the applications that it launched have received their launch requests. Throws std::runtime_error when the
/// watch is not booted, or the service does not come up or ends meanwhile.
void sendAsMailApplication(const Device& device, const std::vector<Request>& requests);

/// The same for a process that is on the watch as its mail application already.
void sendAsMailApplication(const DeviceSession& session, const std::vector<Request>& requests);

} // namespace deskwatch

#endif
