#include <fcntl.h>
#include <message_port.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <memory>

#include "c_owners.h"
#include "contract_environment.h"
#include "host_bus.h"
#include "main_loop.h"
#include "private_device.h"

namespace contract {
namespace {

std::unique_ptr<PrivateDevice>& device() {
    static std::unique_ptr<PrivateDevice> instance;
    return instance;
}

/// What the remote application and its earlier lives said.
std::filesystem::path remoteLog() {
    return device()->folder() / "remote";
}

c::ObjectOwner<GSubprocess>& remoteProcess() {
    static c::ObjectOwner<GSubprocess> process;
    return process;
}

/// Asks until the remote's port is open, or until it is not.
bool awaitRemotePort(bool open) {
    constexpr gint64 limit = gint64{10} * G_USEC_PER_SEC;
    const gint64 deadline = g_get_monotonic_time() + limit;
    bool isOpen = !open;
    while (isOpen != open && g_get_monotonic_time() < deadline) {
        message_port_check_remote_port(remote::id, remote::port, &isOpen);
    }
    return isOpen == open;
}

/// An open port takes messages once its application's main loop runs, and it answers from there.
bool awaitRemoteMainLoop() {
    const c::ObjectOwner<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    const c::VariantOwner answer(
        bus == nullptr ? nullptr
                       : g_dbus_connection_call_sync(bus.get(), remote::id, host_bus::applicationPath,
                                                     "tesk.host.Application", "Settle", nullptr, nullptr,
                                                     G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr));
    return answer != nullptr;
}

} // namespace

void setUp() {
    device() = std::make_unique<PrivateDevice>(applicationId);
    device()->boot();
}

void tearDown() {
    remote::kill();
    device().reset();
}

bool runUntil(const std::function<bool()>& condition) {
    return runMainLoopUntil(condition);
}

void runPending() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

// The store's writer is the daemon; this is before the first write, which starts it.
bool removePolicyDaemon() {
    return std::filesystem::remove(device()->folder() / "services" / "ca.desrt.dconf.service");
}

bool mayWipe() {
    return true;
}

namespace remote {

bool start() {
    const c::ObjectOwner<GSubprocessLauncher> launcher(g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE));
    g_subprocess_launcher_setenv(launcher.get(), host_bus::appIdVariable, id, TRUE);
    g_subprocess_launcher_take_stderr_fd(launcher.get(),
                                         open(remoteLog().c_str(), O_CREAT | O_APPEND | O_WRONLY, S_IRUSR | S_IWUSR));
    remoteProcess().reset(g_subprocess_launcher_spawn(launcher.get(), nullptr, REMOTE_APPLICATION, "serve", nullptr));
    return remoteProcess() != nullptr && awaitRemotePort(true) && awaitRemoteMainLoop();
}

bool setKey(const std::string& key, int value) {
    const c::ObjectOwner<GSubprocess> process(g_subprocess_new(G_SUBPROCESS_FLAGS_NONE, nullptr, REMOTE_APPLICATION,
                                                               "set-key", key.c_str(), std::to_string(value).c_str(),
                                                               nullptr));
    return process != nullptr && g_subprocess_wait_check(process.get(), nullptr, nullptr) != FALSE;
}

void kill() {
    if (remoteProcess() != nullptr) {
        g_subprocess_force_exit(remoteProcess().get());
        g_subprocess_wait(remoteProcess().get(), nullptr, nullptr);
        remoteProcess().reset();
        awaitRemotePort(false);
    }
}

std::vector<std::string> texts() {
    const std::string beginning = std::string("message from ") + applicationId + ": ";
    std::vector<std::string> texts;
    std::ifstream log(remoteLog());
    for (std::string line; std::getline(log, line);) {
        if (line.rfind(beginning, 0) == 0) {
            texts.push_back(line.substr(beginning.size()));
        }
    }
    return texts;
}

} // namespace remote
} // namespace contract
