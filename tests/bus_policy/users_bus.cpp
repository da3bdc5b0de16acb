#include "users_bus.h"

#include <unistd.h>

#include <cerrno>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace policy_test {
namespace {

namespace fs = std::filesystem;

/// This process as another user, until this object goes.
class Disguise {
public:
    explicit Disguise(User user) {
        if (seteuid(static_cast<uid_t>(user)) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot become another user");
        }
    }
    ~Disguise() {
        if (seteuid(0) != 0) {
            std::terminate(); // what follows needs root
        }
    }
    Disguise(const Disguise&) = delete;
    Disguise& operator=(const Disguise&) = delete;
};

void write(const fs::path& file, const std::string& text) {
    std::ofstream output(file);
    output << text;
    if (!output.flush()) {
        throw std::runtime_error("cannot write " + file.string());
    }
}

/// What a system bus grants everybody: to come, to talk to the bus, to answer.
std::string configuration(const fs::path& folder, const fs::path& policy) {
    return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN\""
           " \"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">\n"
           "<busconfig><type>system</type><auth>EXTERNAL</auth>"
           "<listen>unix:path=" +
           (folder / "bus").string() +
           "</listen>"
           "<policy context=\"default\">"
           "<allow user=\"*\"/><deny own=\"*\"/><deny send_type=\"method_call\"/>"
           "<allow send_type=\"signal\"/>"
           "<allow send_requested_reply=\"true\" send_type=\"method_return\"/>"
           "<allow send_requested_reply=\"true\" send_type=\"error\"/>"
           "<allow receive_type=\"method_call\"/><allow receive_type=\"method_return\"/>"
           "<allow receive_type=\"error\"/><allow receive_type=\"signal\"/>"
           "<allow send_destination=\"org.freedesktop.DBus\"/></policy>" +
           (policy.empty() ? "" : "<include>" + policy.string() + "</include>") + "</busconfig>\n";
}

deskwatch::Environment usersIn(const fs::path& folder) {
    auto variables = deskwatch::inheritedEnvironment();
    variables["LD_PRELOAD"] = "libnss_wrapper.so";
    variables["NSS_WRAPPER_PASSWD"] = (folder / "passwd").string();
    variables["NSS_WRAPPER_GROUP"] = (folder / "group").string();
    return variables;
}

} // namespace

UsersBus::UsersBus(const fs::path& policy) {
    const auto& folder = folder_.path();
    fs::permissions(folder, static_cast<fs::perms>(0711)); // others must reach the socket
    write(folder / "bus.conf", configuration(folder, policy));
    write(folder / "passwd", "root:x:0:0::/:/bin/sh\nowner:x:5001:5001::/:/bin/sh\nnobody:x:65534:65534::/:/bin/sh\n");
    write(folder / "group", "root:x:0:\nowner:x:5001:\nnogroup:x:65534:\n");
    daemon_.start({folder / "bus.conf", folder / "log", usersIn(folder), false});
}

Connection UsersBus::connect(User user) const {
    const Disguise disguise(user);
    GError* error = nullptr;
    Connection connection(g_dbus_connection_new_for_address_sync(
        address().c_str(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error));
    if (connection == nullptr) {
        throw std::runtime_error("cannot connect: " + c::takeMessage(error));
    }
    return connection;
}

} // namespace policy_test
