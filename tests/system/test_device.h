#ifndef TESTS_SYSTEM_TEST_DEVICE_H
#define TESTS_SYSTEM_TEST_DEVICE_H

#include <sys/types.h>

#include <string>

#include "changes.h"
#include "companions.h"
#include "device/device.h"
#include "service_log.h"
#include "temporary_folder.h"

namespace system_test {

/// A watch of its own for one test: a booted device in a temporary folder, with the built service and a stand-in for
/// every other application. The test itself is the mail application's sending half.
///
/// The service starts as on a device, by the first launch request. A GLib critical ends it, and what a sanitizer or
/// GLib wrote into the log fails the test. Where TESK_TEST_SERVICE names a program, the watch starts that one instead,
/// such as a script that runs the service under a memory checker.
///
///     TestDevice device;
///     device.launchService();
///     device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
///     EXPECT_EQ(device.companions().launches(popup).size(), 1U);
class TestDevice {
public:
    /// Boots it in a folder of its own below that one.
    explicit TestDevice(const deskwatch::DeviceState& state = {}, const std::string& parent = "/tmp");
    ~TestDevice();
    TestDevice(const TestDevice&) = delete;
    TestDevice& operator=(const TestDevice&) = delete;

    const deskwatch::Device& booted() const { return *booted_; }
    const deskwatch::DeviceLayout& layout() const { return booted_->layout(); }
    const ServiceLog& log() const { return log_; }
    const Companions& companions() const { return companions_; }

    /// Where the service keeps its accounts.
    std::filesystem::path database() const;

    /// Sends the service a launch request, which starts it when it does not run, and waits until it has taken it.
    void launchService() const;

    /// Sends the service a request and waits until it has been handled. Fails the test when the platform refuses to
    /// send it.
    void send(const std::string& request, const std::string& argument) const;

    /// Ends the service as the system does, by a signal, and waits for the end.
    void endService() const;

    /// The process of the running service.
    pid_t servicePid() const;

    bool isServiceRunning() const;

    /// Waits until the condition holds, which is looked at again whenever the log grows or a setting of the watch
    /// changes. Fails the test, naming what was waited for, when the deadline passes.
    void waitUntil(const std::string& what, const Changes::Condition& condition) const;

    /// Waits for a line with that text, the nth one of the service's.
    void waitForLog(const std::string& text, int count = 1) const;

private:
    TemporaryFolder folder_;
    deskwatch::BootedDevice booted_;
    ServiceLog log_;
    Changes changes_;
    Companions companions_;
};

} // namespace system_test

#endif
