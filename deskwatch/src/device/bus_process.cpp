#include "device/bus_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "c_owners.h"
#include "device/patience.h"

namespace deskwatch {
namespace {

constexpr std::chrono::seconds busTimeout{20};

/// The descriptor that the daemon writes its address to when it is ready.
constexpr int readyDescriptor = 3;

struct Pipe {
    FileDescriptor read;
    FileDescriptor write;
};

Pipe makePipe() {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    }
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

FileDescriptor openLog(const std::filesystem::path& log) {
    FileDescriptor descriptor(open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
    if (!descriptor.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "cannot open " + log.string());
    }
    return descriptor;
}

/// What the new process is told.
struct Introduction {
    std::string record;
    pid_t starter; // that it ends with; 0 for nobody
};

/// Runs in the new process before it becomes the daemon, in a session of its own with all that it starts. The daemon
/// writes down itself who it is, so that it is known even when the process that boots the device is killed at this
/// moment. Only calls that are safe after a fork.
void introduceDaemon(gpointer data) {
    const auto& introduction = *static_cast<const Introduction*>(data);
    if (introduction.starter != 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    }
    if (introduction.starter != 0 && getppid() != introduction.starter) {
        _exit(1);
    }
    setsid();
    char stat[1024];
    const FileDescriptor self(open("/proc/self/stat", O_RDONLY | O_CLOEXEC));
    const ssize_t length = read(self.get(), stat, sizeof stat);
    const FileDescriptor record(open(introduction.record.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
    if (length <= 0 || write(record.get(), stat, static_cast<size_t>(length)) != length) {
        _exit(1);
    }
}

std::string findDaemon() {
    const c::MemoryOwner<char> path(g_find_program_in_path("dbus-daemon"));
    if (path == nullptr) {
        throw std::runtime_error("no dbus-daemon on PATH (apt install dbus-daemon)");
    }
    return path.get();
}

/// Waits until the daemon says that it is ready. False when it ends instead, or takes too long.
bool waitUntilReady(const FileDescriptor& ready) {
    pollfd entry{ready.get(), POLLIN, 0};
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(busTimeout).count();
    char first = '\0';
    return poll(&entry, 1, static_cast<int>(milliseconds)) == 1 && read(ready.get(), &first, 1) == 1;
}

std::string lastLine(const std::filesystem::path& log) {
    std::ifstream file(log);
    std::string last;
    for (std::string line; std::getline(file, line);) {
        last = line;
    }
    return last;
}

void setEnvironment(GSubprocessLauncher* launcher, const Environment& environment) {
    auto list = assignments(environment);
    std::vector<char*> pointers;
    pointers.reserve(list.size() + 1);
    for (auto& assignment : list) {
        pointers.push_back(assignment.data());
    }
    pointers.push_back(nullptr);
    g_subprocess_launcher_set_environ(launcher, pointers.data());
}

} // namespace

void BusProcess::start(const Start& start) const {
    const std::string daemon = findDaemon();
    const std::string configuration = "--config-file=" + start.configuration.string();
    const std::string ready = "--print-address=" + std::to_string(readyDescriptor);
    const char* const arguments[] = {daemon.c_str(), configuration.c_str(), "--nofork", "--nopidfile",
                                     "--nosyslog",   ready.c_str(),         nullptr};
    auto [readEnd, writeEnd] = makePipe();
    Introduction introduction{record_.string(), start.endsWithStarter ? getpid() : 0};
    GError* error = nullptr;
    {
        const c::ObjectOwner<GSubprocessLauncher> launcher(g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_NONE));
        setEnvironment(launcher.get(), start.environment);
        g_subprocess_launcher_set_cwd(launcher.get(), "/");
        g_subprocess_launcher_take_stdout_fd(launcher.get(), openLog(start.log).release());
        g_subprocess_launcher_take_stderr_fd(launcher.get(), openLog(start.log).release());
        g_subprocess_launcher_take_fd(launcher.get(), writeEnd.release(), readyDescriptor);
        g_subprocess_launcher_set_child_setup(launcher.get(), introduceDaemon, &introduction, nullptr);
        const c::ObjectOwner<GSubprocess> process(g_subprocess_launcher_spawnv(launcher.get(), arguments, &error));
    }
    if (error != nullptr) {
        throw std::runtime_error("cannot start " + daemon + ": " + c::takeMessage(error));
    }
    if (!waitUntilReady(readEnd)) {
        stop(busTimeout);
        throw std::runtime_error("dbus-daemon did not start: " + lastLine(start.log));
    }
}

std::optional<ProcessHandle> BusProcess::running() const {
    std::ifstream file(record_);
    const auto identity = parseProcessStat(std::string(std::istreambuf_iterator<char>(file), {}));
    return identity ? ProcessHandle::open(*identity) : std::nullopt;
}

void BusProcess::stop(std::chrono::milliseconds atMost) const {
    if (const auto daemon = running()) {
        daemon->signal(SIGTERM);
        awaitEnd(*daemon, atMost);
    }
    std::filesystem::remove(record_);
}

} // namespace deskwatch
