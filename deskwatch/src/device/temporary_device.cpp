#include "device/temporary_device.h"

#include <sys/prctl.h>
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

/// Returns the signals that were blocked before.
sigset_t blockSignals() {
    const auto signals = awaitedSignals();
    sigset_t earlier;
    sigprocmask(SIG_BLOCK, &signals, &earlier);
    return earlier;
}

/// In the child: when the parent is killed, nobody else would end it.
void endWithParent(pid_t parent) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        std::raise(SIGKILL);
    }
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

void switchOff(const Device& device) {
    try {
        device.off();
    } catch (const std::exception&) {
        device.kill(); // a process that hangs does not come to an orderly end
    }
}

/// After a sudden end nothing there is worth waiting for.
void remove(const Device& device, bool isSudden) {
    try {
        if (fs::exists(device.layout().busConfiguration()) && !isSudden) {
            switchOff(device);
        }
        while (isSudden && device.kill()) { // one that was ending may have started another
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

TemporaryDevice::TemporaryDevice() : earlier_(blockSignals()), device_(newFolder() / "watch") {
    const auto signals = awaitedSignals();
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        endWithParent(parent);
    }
    if (child > 0) {
        const int status = awaitEnd(child, signals);
        remove(device_, WIFSIGNALED(status));
        endAs(status, signals);
    }
    sigprocmask(SIG_SETMASK, &earlier_, nullptr);
    if (child < 0) {
        const int error = errno;
        remove(device_, true);
        throw std::system_error(error, std::generic_category(), "cannot start a process");
    }
}

} // namespace deskwatch
