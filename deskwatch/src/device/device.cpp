#include "device/device.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <system_error>

#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/bus_process.h"
#include "device/file_descriptor.h"
#include "device/patience.h"
#include "host_bus.h"

namespace deskwatch {
namespace {

/// An application that works ends much sooner.
constexpr std::chrono::seconds longestEnd{20};

/// One deadline for waits that follow each other.
class TimeLeft {
public:
    explicit TimeLeft(std::chrono::milliseconds atMost) : end_(std::chrono::steady_clock::now() + atMost) {}

    std::chrono::milliseconds get() const {
        const auto left = end_ - std::chrono::steady_clock::now();
        return std::max(std::chrono::duration_cast<std::chrono::milliseconds>(left), std::chrono::milliseconds::zero());
    }

private:
    std::chrono::steady_clock::time_point end_;
};

/// Whether the file was locked in time; flock() itself would wait for ever.
bool lockWithin(std::chrono::milliseconds atMost, const FileDescriptor& file, const std::filesystem::path& name) {
    const TimeLeft time(atMost);
    const auto isTaken = [&file] { return file.isOpen() && flock(file.get(), LOCK_EX | LOCK_NB) == 0; };
    constexpr int pause = 10; // milliseconds, which a signal cuts short
    while (!isTaken()) {
        if (errno == EWOULDBLOCK && time.get() == std::chrono::milliseconds::zero()) {
            return false;
        }
        if (errno != EWOULDBLOCK || poll(nullptr, 0, pause) != 0) {
            throw std::system_error(errno, std::generic_category(), "cannot lock " + name.string());
        }
    }
    return true;
}

/// Keeps two processes from booting or ending one device at the same time. The lock goes with the descriptor.
FileDescriptor lockBoot(const DeviceLayout& layout, std::chrono::milliseconds patience) {
    FileDescriptor lock(open(layout.bootLock().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    const auto other = "another command that boots or ends " + layout.folder().string();
    if (!tryPatiently(patience, noticeOfStart, other,
                      [&](auto atMost) { return lockWithin(atMost, lock, layout.bootLock()); })) {
        throw NoAnswer(other, patience);
    }
    return lock;
}

/// The applications of a device whose bus runs. A bus that does not answer any more has none that could be known.
std::vector<ProcessHandle> applicationsOf(const DeviceLayout& layout, std::chrono::milliseconds atMost) {
    try {
        return BusClient(layout.busAddress(), atMost).daemon().applicationProcesses();
    } catch (const std::runtime_error&) {
        return {};
    }
}

/// All processes of a device, known by their environment, which no process changes: those of a bus whose record is gone
/// with its folder, too.
std::vector<ProcessHandle> processesOf(const DeviceLayout& layout) {
    return ProcessHandle::withVariable(host_bus::deviceVariable, layout.folder().string());
}

/// Whether a process of the bus may become any application: nothing tells yet which.
bool isOnTheWay(const ProcessHandle& process, const ProcessHandle& bus) {
    const auto program = process.program();
    return process.pid() != bus.pid() && (program == bus.program() || program == "env") && !process.hasChildren();
}

void waitFor(const std::vector<ProcessHandle>& processes, const TimeLeft& time) {
    for (const auto& process : processes) {
        awaitEnd(process, time.get());
    }
}

/// Ends what an earlier run of the device left. False when there was nothing.
bool endLeftovers(const DeviceLayout& layout, int signal, const TimeLeft& time) {
    const auto left = processesOf(layout);
    for (const auto& process : left) {
        process.signal(signal);
    }
    waitFor(left, time);
    return !left.empty();
}

/// A program that was still coming up may wait for its bus for ever. Everything that the daemon started is in its
/// session.
void endLatecomers(pid_t session, const TimeLeft& time) {
    for (auto left = ProcessHandle::ofSession(session); !left.empty(); left = ProcessHandle::ofSession(session)) {
        for (const auto& process : left) {
            process.signal(SIGTERM);
        }
        waitFor(left, time);
    }
}

/// A boot that ended suddenly leaves a bus without this mark, which the next boot takes for what it is.
void writeBootedMark(const DeviceLayout& layout) {
    std::ofstream mark(layout.bootedMark());
    if (!mark.is_open()) {
        throw std::system_error(errno, std::generic_category(), "cannot write " + layout.bootedMark().string());
    }
}

void noteLogOfBoot(const DeviceLayout& layout) {
    std::error_code missing;
    const auto size = std::filesystem::file_size(layout.log(), missing);
    std::ofstream(layout.logOfBoot()) << (missing ? 0 : size) << '\n'; // without it the log is one of many boots
}

bool endBus(const DeviceLayout& layout, const BusProcess& bus, std::chrono::milliseconds atMost) {
    const TimeLeft time(atMost);
    const auto daemon = bus.running();
    // one that does not answer still gets time to end
    const auto applications = daemon ? applicationsOf(layout, atMost / 2) : std::vector<ProcessHandle>{};
    bus.stop(time.get());
    std::filesystem::remove(layout.bootedMark()); // which means nothing without a bus
    std::filesystem::remove(layout.socket());
    waitFor(applications, time); // they end when their bus does
    if (daemon) {
        endLatecomers(daemon->pid(), time);
    }
    const bool hadLeftovers = endLeftovers(layout, SIGTERM, time);
    return daemon || hadLeftovers;
}

} // namespace

std::chrono::seconds Device::endTimeout() const {
    return std::min(patience_, longestEnd);
}

void Device::boot(const std::vector<Application>& applications, const DeviceState& state) const {
    layout_.makeFolders();
    const auto lock = lockBoot(layout_, patience_);
    if (isBooted()) {
        throw std::runtime_error(layout_.folder().string() + " is already booted");
    }
    endBus(layout_, BusProcess(layout_.busRecord()), endTimeout()); // what a sudden end left behind
    std::filesystem::remove(layout_.internalWipes());
    const bool isFresh = !std::filesystem::exists(layout_.settingsDatabase());
    start(applications, false, [&] { writeFirstSettings(BusClient(busAddress(), patience_), state, isFresh); });
}

void Device::resume(const std::vector<Application>& applications) const {
    layout_.makeFolders();
    start(applications, true, [] {});
}

void Device::start(const std::vector<Application>& applications, bool endsWithThisThread,
                   const std::function<void()>& whenBusRuns) const {
    const BusProcess bus(layout_.busRecord());
    writeDeviceFiles(layout_, applications);
    noteLogOfBoot(layout_);
    bus.start({layout_.busConfiguration(), layout_.log(), layout_.commonEnvironment(), endsWithThisThread});
    try {
        whenBusRuns();
        writeBootedMark(layout_);
    } catch (...) {
        endBus(layout_, bus, endTimeout());
        throw;
    }
}

std::optional<pid_t> Device::currentBoot() const {
    const auto bus = BusProcess(layout_.busRecord()).running();
    return bus && std::filesystem::exists(layout_.bootedMark()) ? std::optional(bus->pid()) : std::nullopt;
}

void Device::requireBooted() const {
    if (!isBooted()) {
        const std::string folder = layout_.folder().string();
        throw std::runtime_error(folder + " is not booted; boot it with: deskwatch boot " + folder);
    }
}

bool Device::off() const {
    if (!exists()) {
        if (endLeftovers(layout_, SIGTERM, TimeLeft(endTimeout()))) {
            return true;
        }
        throw std::runtime_error(layout_.folder().string() + " is not a watch folder");
    }
    const auto lock = lockBoot(layout_, patience_);
    return endBus(layout_, BusProcess(layout_.busRecord()), endTimeout());
}

bool Device::kill() const {
    const bool wasRunning = endLeftovers(layout_, SIGKILL, TimeLeft(endTimeout()));
    for (const auto& file : {layout_.bootedMark(), layout_.busRecord(), layout_.socket()}) {
        std::filesystem::remove(file);
    }
    return wasRunning;
}

bool Device::hasProgramOf(const std::string& id) const {
    const auto bus = BusProcess(layout_.busRecord()).running();
    const auto processes = processesOf(layout_);
    return std::any_of(processes.begin(), processes.end(), [&](const ProcessHandle& process) {
        return process.hasVariable(host_bus::appIdVariable, id) || (bus && isOnTheWay(process, *bus));
    });
}

Environment Device::appEnvironment(const std::string& id) const {
    Environment environment = layout_.commonEnvironment();
    environment.merge(layout_.applicationEnvironment(id));
    return environment;
}

BootedDevice::BootedDevice(const std::filesystem::path& folder, const std::vector<Application>& applications,
                           const DeviceState& state)
    : device_(folder) {
    device_.boot(applications, state);
}

BootedDevice::~BootedDevice() {
    try {
        device_.off();
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "off: %s\n", error.what()));
    }
}

std::vector<Application> standardApplications(const std::filesystem::path& service,
                                              const std::vector<std::string>& companion) {
    std::vector<Application> applications{{ids::service, {service.string()}}};
    for (const auto* id : ids::companions) {
        applications.push_back({id, companion});
    }
    return applications;
}

} // namespace deskwatch
