#ifndef DESKWATCH_DEVICE_H
#define DESKWATCH_DEVICE_H

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "device/device_files.h"
#include "device/device_layout.h"
#include "device/environment.h"
#include "device/first_settings.h"

namespace deskwatch {

/// A watch on the desk: a folder with all that it keeps, and a private bus that starts its applications. Any number of
/// them stand side by side. A watch stays booted when the process that booted it ends, until someone switches it off.
///
///     Device watch("/tmp/watch");
///     watch.boot(standardApplications("/usr/bin/tesk-agent", {"/usr/bin/deskwatch", "companion"}));
///     ... processes with watch.appEnvironment(id) talk to each other ...
///     watch.off();
class Device {
public:
    /// Names a watch by its folder, which need not exist; touches nothing. Throws std::runtime_error when a bus cannot
    /// be there (see DeviceLayout).
    explicit Device(const std::filesystem::path& folder, std::chrono::seconds patience = defaultPatience)
        : layout_(folder), patience_(patience) {}

    const DeviceLayout& layout() const { return layout_; }

    /// How long to wait for an answer of an application of the watch, or of its bus.
    std::chrono::seconds patience() const { return patience_; }

    /// Longer than the bus waits for a program to come up, and than the service waits for a locked database.
    static constexpr std::chrono::seconds defaultPatience{120};

    /// Boots the watch: lays out its folder, cleans up what a sudden end left there, starts its bus and brings its
    /// settings into their first state. Applications start when they are needed. Throws std::runtime_error when it is
    /// booted already or when a step fails; then nothing of it runs.
    void boot(const std::vector<Application>& applications, const DeviceState& state = {}) const;

    /// Boots a watch that has never run. Leaves all settings as they are in its folder, the keys under memory/ and the
    /// faults included: for a watch that lasts as long as the calling thread. When that is killed, the bus goes and all
    /// applications with it.
    void resume(const std::vector<Application>& applications) const;

    /// Whether the watch has been booted to the end and its bus runs.
    bool isBooted() const { return currentBoot().has_value(); }

    /// The process of its bus, which tells one boot from the next; none when the watch is not booted.
    std::optional<pid_t> currentBoot() const;

    /// Throws std::runtime_error with what would boot it when the watch is not booted.
    void requireBooted() const;

    /// Switches the watch off: ends its bus, waits for that and for the applications, which end when their bus goes.
    /// Cleans up after a sudden end, also when the folder is gone. False when it was off already. Throws
    /// std::runtime_error when a process does not end.
    bool off() const;

    /// Kills every process of the watch, which may lose what they have not stored. False when there was none.
    bool kill() const;

    /// Whether the folder is one of a watch that was booted once.
    bool exists() const { return std::filesystem::exists(layout_.busConfiguration()); }

    /// Whether a program of this application runs, known to the bus or not, or the bus is about to start one.
    bool hasProgramOf(const std::string& id) const;

    /// The address of the watch's bus, session and system bus in one.
    std::string busAddress() const { return layout_.busAddress(); }

    /// The whole environment of a process that runs as this application on the watch.
    Environment appEnvironment(const std::string& id) const;

private:
    void start(const std::vector<Application>& applications, bool endsWithThisThread,
               const std::function<void()>& whenBusRuns) const;

    std::chrono::seconds endTimeout() const;

    DeviceLayout layout_;
    std::chrono::seconds patience_;
};

/// A watch that is booted as long as this object lives, for tests.
class BootedDevice {
public:
    BootedDevice(const std::filesystem::path& folder, const std::vector<Application>& applications,
                 const DeviceState& state = {});
    ~BootedDevice();
    BootedDevice(const BootedDevice&) = delete;
    BootedDevice& operator=(const BootedDevice&) = delete;

    const Device* operator->() const { return &device_; }
    const Device& operator*() const { return device_; }

private:
    Device device_;
};

/// The applications of a watch: the service is that program, every other one is started with the companion's command.
std::vector<Application> standardApplications(const std::filesystem::path& service,
                                              const std::vector<std::string>& companion);

} // namespace deskwatch

#endif
