#ifndef POLICY_USERS_BUS_H
#define POLICY_USERS_BUS_H

#include <sys/types.h>

#include <filesystem>
#include <string>

#include "c_owners.h"
#include "device/bus_process.h"
#include "temporary_folder.h"

namespace policy_test {

/// The users of the bus.
enum class User : uid_t { Root = 0, Owner = 5001, Other = 65534 };

/// A connection of one user to the bus.
using Connection = c::ObjectOwner<GDBusConnection>;

/// A system bus as a device has it, which denies owning and calling by default, with the users of a device. Needs root.
class UsersBus {
public:
    /// Starts it with that bus policy on top, or with none when the path is empty.
    explicit UsersBus(const std::filesystem::path& policy);
    ~UsersBus() { daemon_.stop(std::chrono::seconds(20)); }
    UsersBus(const UsersBus&) = delete;
    UsersBus& operator=(const UsersBus&) = delete;

    std::string address() const { return "unix:path=" + (folder_.path() / "bus").string(); }

    /// Connects as that user, who is told to the bus by the kernel. Throws std::runtime_error when refused.
    Connection connect(User user) const;

private:
    TemporaryFolder folder_;
    deskwatch::BusProcess daemon_{folder_.path() / "bus.process"};
};

} // namespace policy_test

#endif
