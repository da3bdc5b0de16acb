#ifndef LOAD_HANDLED_H
#define LOAD_HANDLED_H

#include <string>
#include <vector>

namespace load_test {

/// Requests in an order, such as `update`, `delete`, `unknown 17` or `maxInactivityTimeDeviceLock 30`, by the way they
/// came: what comes over the port and what comes over the diagnostic bus may overtake each other.
struct Requests {
    std::vector<std::string> port;
    std::vector<std::string> diagnostic;

    bool operator==(const Requests& other) const { return port == other.port && diagnostic == other.diagnostic; }
};

void PrintTo(const Requests& requests, std::ostream* output);

/// What the service handled, in order, as its log tells.
Requests handledRequests(const std::string& log);

} // namespace load_test

#endif
