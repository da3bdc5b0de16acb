#include "device/temporary_device.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

fs::path newFolder() {
    std::string path = (fs::temp_directory_path() / "deskwatch-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make a folder " + path);
    }
    return path;
}

bool isIgnored(int signal) {
    struct sigaction action {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

/// What ends the wait for the child: its end, and the signals that ask for ours.
sigset_t awaitedSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGCHLD);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(signal)) {
            sigaddset(&signals, signal);
        }
    }
    return signals;
}

/// The status of the child when it has ended; it is killed when this process is told to end.
int awaitEnd(pid_t child, const sigset_t& signals) {
    int status = 0;
    while (waitpid(child, &status, WNOHANG) != child) {
        const int signal = sigwaitinfo(&signals, nullptr);
        if (signal > 0 && signal != SIGCHLD) {
            kill(child, SIGKILL);
            waitpid(child, &status, 0);
            return signal; // as the status of a process that this signal has ended
        }
    }
    return status;
}

void remove(const Device& device) {
    try {
        if (fs::exists(device.layout().busConfiguration())) {
            device.off();
        }
        fs::remove_all(device.layout().folder().parent_path());
    } catch (const std::exception& error) {
        static_cast<void>(
            std::fprintf(stderr, "cannot remove %s: %s\n", device.layout().folder().c_str(), error.what()));
    }
}

[[noreturn]] void endAs(int status, const sigset_t& signals) {
    if (WIFSIGNALED(status)) {
        std::signal(WTERMSIG(status), SIG_DFL);
        sigprocmask(SIG_UNBLOCK, &signals, nullptr);
        std::raise(WTERMSIG(status));
    }
    std::exit(WEXITSTATUS(status));
}

} // namespace

TemporaryDevice::TemporaryDevice() : device_(newFolder() / "watch") {
    const auto signals = awaitedSignals();
    sigset_t earlier;
    sigprocmask(SIG_BLOCK, &signals, &earlier);
    const pid_t child = fork();
    if (child > 0) {
        const int status = awaitEnd(child, signals);
        remove(device_);
        endAs(status, signals);
    }
    sigprocmask(SIG_SETMASK, &earlier, nullptr);
    if (child < 0) {
        const int error = errno;
        remove(device_);
        throw std::system_error(error, std::generic_category(), "cannot start a process");
    }
}

} // namespace deskwatch
