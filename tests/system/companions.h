#ifndef TESTS_SYSTEM_COMPANIONS_H
#define TESTS_SYSTEM_COMPANIONS_H

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "c_owners.h"
#include "device/application_ids.h"

namespace system_test {

namespace ids = deskwatch::ids;

using Entries = std::map<std::string, std::string>;

/// A launch request that an application got.
struct Launch {
    std::string caller;
    /// Whether an answer is still owed.
    bool waits = false;
    Entries extraData;

    bool operator==(const Launch& other) const {
        return caller == other.caller && waits == other.waits && extraData == other.extraData;
    }
};

void PrintTo(const Launch& launch, std::ostream* output);

/// The applications of a watch as seen from the bus, on the connection that the platform's functions use here: what was
/// sent before is ahead of what is asked for now.
class Companions {
public:
    /// Connects on first use; the environment must name the watch then.
    explicit Companions(std::string busAddress) : busAddress_(std::move(busAddress)) {}

    /// Waits until an application, started when it does not run, has handled what was sent to it.
    void settle(const std::string& id) const;

    /// What an application was launched with, in order. Launch requests that the service sent before it settled are
    /// among them. An application that does not run is started, and was launched with nothing.
    std::vector<Launch> launches(const std::string& id) const;

    /// Answers the oldest launch request that waits, and waits until the service has got the answer.
    void answer(const std::string& id, const std::string& result) const;

    bool isRunning(const std::string& id) const;

    /// The process of an application; throws when it does not run.
    pid_t processOf(const std::string& id) const;

private:
    GDBusConnection* connection() const;

    std::string busAddress_;
    mutable c::ObjectOwner<GDBusConnection> connection_;
};

} // namespace system_test

#endif
