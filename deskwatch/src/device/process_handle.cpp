#include "device/process_handle.h"

#include <poll.h>
#include <sys/types.h>

// The C library's header declares these functions for C alone before its version 2.37.
extern "C" {
#include <sys/pidfd.h>
}

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "device/patience.h"

namespace deskwatch {
namespace {

bool hasAssignment(pid_t pid, const std::string& assignment) {
    std::ifstream environment("/proc/" + std::to_string(pid) + "/environ");
    for (std::string entry; std::getline(environment, entry, '\0');) {
        if (entry == assignment) {
            return true;
        }
    }
    return false;
}

std::vector<ProcessHandle> processesThat(const std::function<bool(pid_t)>& condition) {
    std::vector<ProcessHandle> processes;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const auto pid = static_cast<pid_t>(std::atoi(entry.path().filename().c_str()));
        auto process = pid > 0 && condition(pid) ? ProcessHandle::open(pid) : std::nullopt;
        if (process) {
            processes.push_back(std::move(*process));
        }
    }
    return processes;
}

std::optional<ProcessIdentity> identityOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    return parseProcessStat(std::string(std::istreambuf_iterator<char>(file), {}));
}

} // namespace

std::optional<ProcessIdentity> parseProcessStat(const std::string& text) {
    // The second field is the program's name in parentheses and may itself hold blanks and parentheses.
    const auto nameEnd = text.rfind(')');
    if (nameEnd == std::string::npos) {
        return std::nullopt;
    }
    ProcessIdentity identity;
    std::istringstream(text) >> identity.pid;
    std::istringstream fields(text.substr(nameEnd + 1));
    constexpr int fieldsBeforeStartTime = 19;
    std::string skipped;
    for (int field = 0; field < fieldsBeforeStartTime; ++field) {
        fields >> skipped;
    }
    if (!(fields >> identity.startTime) || identity.pid <= 0) {
        return std::nullopt;
    }
    return identity;
}

std::optional<ProcessHandle> ProcessHandle::open(pid_t pid) {
    FileDescriptor descriptor(pidfd_open(pid, 0));
    if (!descriptor.isOpen()) {
        return std::nullopt;
    }
    ProcessHandle handle(pid, std::move(descriptor));
    // A zombie is not a running process.
    if (handle.waitForEnd(std::chrono::milliseconds::zero())) {
        return std::nullopt;
    }
    return handle;
}

std::optional<ProcessHandle> ProcessHandle::open(const ProcessIdentity& identity) {
    // The handle first: what is read afterwards is about the process that the handle holds.
    auto handle = open(identity.pid);
    const auto found = handle ? identityOf(identity.pid) : std::nullopt;
    if (!found || found->startTime != identity.startTime) {
        return std::nullopt;
    }
    return handle;
}

std::vector<ProcessHandle> ProcessHandle::ofSession(pid_t session) {
    return processesThat([&](pid_t pid) { return getsid(pid) == session; });
}

std::vector<ProcessHandle> ProcessHandle::withVariable(const std::string& name, const std::string& value) {
    const std::string assignment = name + "=" + value;
    return processesThat([&](pid_t pid) { return getsid(pid) != getsid(0) && hasAssignment(pid, assignment); });
}

void ProcessHandle::signal(int number) const {
    if (pidfd_send_signal(descriptor_.get(), number, nullptr, 0) != 0 && errno != ESRCH) {
        throw std::system_error(errno, std::generic_category(), "cannot signal process " + std::to_string(pid_));
    }
}

bool ProcessHandle::hasVariable(const std::string& name, const std::string& value) const {
    return hasAssignment(pid_, name + "=" + value);
}

std::string ProcessHandle::program() const {
    std::error_code hidden;
    return std::filesystem::read_symlink("/proc/" + std::to_string(pid_) + "/exe", hidden).filename();
}

bool ProcessHandle::hasChildren() const {
    const std::string number = std::to_string(pid_);
    std::ifstream list("/proc/" + number + "/task/" + number + "/children");
    return std::istream_iterator<pid_t>(list) != std::istream_iterator<pid_t>();
}

bool ProcessHandle::waitForEnd(std::chrono::milliseconds atMost) const {
    pollfd entry{descriptor_.get(), POLLIN, 0};
    int ready = -1;
    do {
        ready = poll(&entry, 1, inMilliseconds(atMost));
    } while (ready < 0 && errno == EINTR);
    return ready == 1;
}

void awaitEnd(const ProcessHandle& process, std::chrono::milliseconds atMost) {
    const std::string who = "process " + std::to_string(process.pid()) + " (" + process.program() + ")";
    if (!tryPatiently(atMost, noticeOfWork, who + ", which has not ended",
                      [&](auto time) { return process.waitForEnd(time); })) {
        throw std::runtime_error(who + " still runs although it was asked to end; end it with: deskwatch off --force");
    }
}

} // namespace deskwatch
