#ifndef DESKWATCH_REQUEST_LOG_H
#define DESKWATCH_REQUEST_LOG_H

#include <string>
#include <string_view>
#include <vector>

#include "actors/request.h"
#include "records/service_log.h"

namespace deskwatch {

/// Whether a line in the log, by a function of that name, has that text.
bool contains(const std::vector<ServiceLine>& log, std::string_view function, std::string_view text);

/// Whether the service has handled a request to the end, by what it logged.
bool isHandled(const std::vector<ServiceLine>& log);

/// Why the service did not take a request as a whole, by what it logged; empty when it did.
std::string reasonToPassOver(const std::vector<ServiceLine>& log);

/// What the service logged of one request.
struct RequestLog {
    std::vector<ServiceLine> lines;
    /// Whether the lines are this request's alone.
    bool isOwn = false;
    /// Whether the service handled other requests meanwhile, so that the store shows what those did, too.
    bool hasOthers = false;
};

/// What is about the request in all that the service logged meanwhile: it handles one after the other. All of it where
/// several could be this one.
RequestLog logOf(const Request& request, const std::vector<ServiceLine>& log);

/// The lines of each account that the service takes, in order. None where the log does not show the functions that the
/// service enters.
std::vector<std::vector<ServiceLine>> splitByAccount(const std::vector<ServiceLine>& log);

} // namespace deskwatch

#endif
