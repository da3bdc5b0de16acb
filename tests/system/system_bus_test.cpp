#include "application_ids.h"
#include "device_state.h"
#include "messages.h"
#include "service_process.h"
#include "watch.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

namespace system_test {
namespace {

/// A system bus that is not the device's own bus, as on a device.
class SystemBus {
public:
    SystemBus()
        : daemon_(g_subprocess_new(G_SUBPROCESS_FLAGS_STDOUT_PIPE, nullptr, "dbus-daemon", "--session", "--nofork",
                                   "--print-address", nullptr)) {
        if (daemon_ == nullptr) {
            throw std::runtime_error("cannot start a dbus-daemon");
        }
        const deskwatch::ObjectOwner<GDataInputStream> output(
            g_data_input_stream_new(g_subprocess_get_stdout_pipe(daemon_.get())));
        const std::unique_ptr<char, decltype(&g_free)> line(
            g_data_input_stream_read_line(output.get(), nullptr, nullptr, nullptr), g_free);
        address_ = line != nullptr ? line.get() : "";
    }
    SystemBus(const SystemBus&) = delete;
    SystemBus& operator=(const SystemBus&) = delete;
    ~SystemBus() { goAway(); }

    const std::string& address() const { return address_; }

    void goAway() const {
        g_subprocess_force_exit(daemon_.get());
        g_subprocess_wait(daemon_.get(), nullptr, nullptr);
    }

private:
    deskwatch::ObjectOwner<GSubprocess> daemon_;
    std::string address_;
};

deskwatch::Environment environmentWith(const Watch& watch, const SystemBus& systemBus) {
    auto environment = watch.device().appEnvironment(ids::service);
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus.address();
    return environment;
}

TEST(SystemBus, ServiceOutlivesItAndGoesOnEnforcing) {
    const SystemBus systemBus;
    const Watch watch;
    const ServiceProcess service(watch, environmentWith(watch, systemBus));
    watch.waitForLog("TestDbus.cpp: __onNameAcquired");

    systemBus.goAway();
    watch.waitForLog("TestDbus.cpp: __onNameLost");
    watch.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(storedRows(watch.database()).size(), 1U);
    EXPECT_EQ(watch.servicePid(), service.pid());
}

TEST(SystemBus, ServiceWorksWithoutOne) {
    const Watch watch;
    auto environment = watch.device().appEnvironment(ids::service);
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=" + (watch.layout().folder() / "nowhere").string();
    const ServiceProcess service(watch, environment);
    watch.waitForLog("TestDbus.cpp: __onNameLost");

    watch.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(storedRows(watch.database()).size(), 1U);
    EXPECT_EQ(watch.servicePid(), service.pid());
}

} // namespace
} // namespace system_test
