#include <gtest/gtest.h>

#include "bus_daemon.h"
#include "device/application_ids.h"
#include "device_state.h"
#include "messages.h"
#include "service_process.h"
#include "test_device.h"

namespace system_test {
namespace {

deskwatch::Environment environmentWith(const TestDevice& device, const BusDaemon& systemBus) {
    auto environment = device.booted().appEnvironment(ids::service);
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus.address();
    return environment;
}

TEST(SystemBus, ServiceOutlivesItAndGoesOnEnforcing) {
    const BusDaemon systemBus("--session"); // not the device's own bus, as on a device
    const TestDevice device;
    const ServiceProcess service(device, environmentWith(device, systemBus));
    device.waitForLog("TestDbus.cpp: __onNameAcquired");

    systemBus.goAway();
    device.waitForLog("TestDbus.cpp: __onNameLost");
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(storedRows(device.database()).size(), 1U);
    EXPECT_EQ(device.servicePid(), service.pid());
}

TEST(SystemBus, ServiceWorksWithoutOne) {
    const TestDevice device;
    auto environment = device.booted().appEnvironment(ids::service);
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=" + (device.layout().folder() / "nowhere").string();
    const ServiceProcess service(device, environment);
    device.waitForLog("TestDbus.cpp: __onNameLost");

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(storedRows(device.database()).size(), 1U);
    EXPECT_EQ(device.servicePid(), service.pid());
}

} // namespace
} // namespace system_test
