#ifndef TESTS_PRIVATE_DEVICE_H
#define TESTS_PRIVATE_DEVICE_H

#include <filesystem>
#include <string>

#include "c_owners.h"

/// A device of one test: a temporary folder and a private bus daemon with a settings store. The test's own process gets
/// the environment of an application of that device.
class PrivateDevice {
public:
    /// Makes the folder and sets the environment; boot() starts its bus.
    explicit PrivateDevice(const std::string& applicationId);

    PrivateDevice(const PrivateDevice&) = delete;
    PrivateDevice& operator=(const PrivateDevice&) = delete;
    ~PrivateDevice();

    /// Starts the bus daemon, and returns when applications can connect. Throws std::runtime_error.
    void boot();

    /// Ends the bus daemon, which ends every application.
    void shutDown();

    /// Lets the bus daemon start an application: its id, the command, and further variables of its environment. Before
    /// boot().
    void install(const std::string& applicationId, const std::string& command);

    const std::filesystem::path& folder() const { return folder_; }

    /// What the bus daemon and the applications that it started wrote so far.
    std::string log() const;

private:
    std::filesystem::path folder_;
    c::ObjectOwner<GSubprocess> daemon_;
};

#endif
