#include "bus_daemon.h"

#include <stdexcept>

namespace policy_test {
namespace {

c::ObjectOwner<GSubprocess> start(const std::string& configuration, const deskwatch::Environment& variables) {
    const c::ObjectOwner<GSubprocessLauncher> launcher(g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_STDOUT_PIPE));
    for (const auto& [name, value] : variables) {
        g_subprocess_launcher_setenv(launcher.get(), name.c_str(), value.c_str(), TRUE);
    }
    GError* error = nullptr;
    c::ObjectOwner<GSubprocess> daemon(g_subprocess_launcher_spawn(
        launcher.get(), &error, "dbus-daemon", configuration.c_str(), "--nofork", "--print-address", nullptr));
    if (daemon == nullptr) {
        throw std::runtime_error("cannot start a dbus-daemon: " + c::takeMessage(error));
    }
    return daemon;
}

std::string firstLineOf(GSubprocess* daemon) {
    const c::ObjectOwner<GDataInputStream> output(g_data_input_stream_new(g_subprocess_get_stdout_pipe(daemon)));
    const c::MemoryOwner<char> line(g_data_input_stream_read_line(output.get(), nullptr, nullptr, nullptr));
    if (line == nullptr) {
        throw std::runtime_error("the dbus-daemon gives no address");
    }
    return line.get();
}

} // namespace

BusDaemon::BusDaemon(const std::string& configuration, const deskwatch::Environment& variables)
    : daemon_(start(configuration, variables)), address_(firstLineOf(daemon_.get())) {}

void BusDaemon::goAway() const {
    g_subprocess_force_exit(daemon_.get());
    g_subprocess_wait(daemon_.get(), nullptr, nullptr);
}

} // namespace policy_test
