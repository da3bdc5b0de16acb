#ifndef POLICY_BUS_DAEMON_H
#define POLICY_BUS_DAEMON_H

#include <string>

#include "c_owners.h"
#include "device/environment.h"

namespace policy_test {

/// A bus of the test's own, beside the watch's, which goes with this object.
class BusDaemon {
public:
    /// Starts it with that configuration, an option of the daemon, and these variables beside the test's own. Throws
    /// std::runtime_error when there is no daemon or when it gives no address.
    explicit BusDaemon(const std::string& configuration, const deskwatch::Environment& variables = {});
    BusDaemon(const BusDaemon&) = delete;
    BusDaemon& operator=(const BusDaemon&) = delete;
    ~BusDaemon() { goAway(); }

    const std::string& address() const { return address_; }

    void goAway() const;

private:
    c::ObjectOwner<GSubprocess> daemon_;
    std::string address_;
};

} // namespace policy_test

#endif
