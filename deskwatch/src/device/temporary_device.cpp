#include "device/temporary_device.h"

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

#include "device/temporary_files.h"

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

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

std::vector<pid_t> childrenOfThisProcess() {
    std::ifstream list("/proc/thread-self/children");
    return {std::istream_iterator<pid_t>(list), {}};
}

/// Nothing on a watch that goes is worth an orderly end. As this process adopts what the child leaves, it has those for
/// children, and no other new ones.
void killAdopted(const std::vector<pid_t>& others) {
    std::vector<pid_t> adopted;
    do {
        adopted = childrenOfThisProcess();
        adopted.erase(
            std::remove_if(adopted.begin(), adopted.end(),
                           [&](pid_t child) { return std::find(others.begin(), others.end(), child) != others.end(); }),
            adopted.end());
        for (const pid_t child : adopted) {
            kill(child, SIGKILL);
            waitpid(child, nullptr, 0);
        }
    } while (!adopted.empty()); // what these have left
}

void remove(const Device& device) {
    try {
        fs::remove_all(device.layout().folder().parent_path());
        if (device.layout().socket().parent_path() != device.layout().folder()) {
            fs::remove(device.layout().socket());
        }
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

TemporaryDevice::TemporaryDevice() : earlier_(blockSignals()), device_(makeTemporaryFolder() / "watch") {
    const auto signals = awaitedSignals();
    const auto others = childrenOfThisProcess(); // a shell's that became this program
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child == 0) {
        endWithParent(parent);
    }
    if (child > 0) {
        const int status = awaitEnd(child, signals);
        killAdopted(others);
        remove(device_);
        endAs(status, signals);
    }
    sigprocmask(SIG_SETMASK, &earlier_, nullptr);
    if (child < 0) {
        const int error = errno;
        remove(device_);
        throw std::system_error(error, std::generic_category(), "cannot start a process");
    }
}

} // namespace deskwatch
