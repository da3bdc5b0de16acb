#include "service_process.h"

#include <fcntl.h>

#include <cstdlib>
#include <stdexcept>

#include "device/process_handle.h"
#include "programs.h"

namespace system_test {
namespace {

constexpr std::chrono::seconds exitTimeout{30};

c::ObjectOwner<GSubprocess> start(const deskwatch::DeviceLayout& layout, const deskwatch::Environment& environment) {
    const c::ObjectOwner<GSubprocessLauncher> launcher(g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE));
    auto variables = deskwatch::assignments(environment);
    std::vector<char*> pointers;
    pointers.reserve(variables.size() + 1);
    for (auto& variable : variables) {
        pointers.push_back(variable.data());
    }
    pointers.push_back(nullptr);
    g_subprocess_launcher_set_environ(launcher.get(), pointers.data());
    g_subprocess_launcher_take_stderr_fd(launcher.get(),
                                         open(layout.log().c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600));
    GError* error = nullptr;
    c::ObjectOwner<GSubprocess> child(g_subprocess_launcher_spawn(launcher.get(), &error, programs::service, nullptr));
    if (child == nullptr) {
        throw std::runtime_error("cannot start the service: " + c::takeMessage(error));
    }
    return child;
}

pid_t pidOf(GSubprocess* child) {
    const char* identifier = g_subprocess_get_identifier(child);
    return identifier != nullptr ? std::atoi(identifier) : 0;
}

} // namespace

ServiceProcess::ServiceProcess(const TestDevice& device)
    : ServiceProcess(device, device.booted().appEnvironment(ids::service)) {}

ServiceProcess::ServiceProcess(const TestDevice& device, const deskwatch::Environment& environment)
    : child_(start(device.layout(), environment)), pid_(pidOf(child_.get())) {}

ServiceProcess::~ServiceProcess() {
    g_subprocess_force_exit(child_.get());
    g_subprocess_wait(child_.get(), nullptr, nullptr);
}

std::optional<int> ServiceProcess::waitForExit() const {
    const auto process = deskwatch::ProcessHandle::open(pid_);
    if (process && !process->waitForEnd(exitTimeout)) {
        return std::nullopt;
    }
    g_subprocess_wait(child_.get(), nullptr, nullptr);
    return g_subprocess_get_if_exited(child_.get()) != FALSE ? std::optional(g_subprocess_get_exit_status(child_.get()))
                                                             : std::nullopt;
}

} // namespace system_test
