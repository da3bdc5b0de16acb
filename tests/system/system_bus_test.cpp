#include <gtest/gtest.h>

#include "device/application_ids.h"
#include "device_state.h"
#include "messages.h"
#include "service_process.h"
#include "test_device.h"

namespace system_test {
namespace {

deskwatch::Environment environmentWith(const TestDevice& device, const std::string& systemBus) {
    auto environment = device.booted().appEnvironment(ids::service);
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus;
    return environment;
}

TEST(SystemBus, ServiceOutlivesItAndGoesOnEnforcing) {
    const c::ObjectOwner<GTestDBus> systemBus(g_test_dbus_new(G_TEST_DBUS_NONE));
    g_test_dbus_up(systemBus.get()); // not the device's own bus, as on a device
    const TestDevice device;
    const ServiceProcess service(device, environmentWith(device, g_test_dbus_get_bus_address(systemBus.get())));
    device.waitForLog("TestDbus.cpp: __onNameAcquired");

    g_test_dbus_stop(systemBus.get());
    device.waitForLog("TestDbus.cpp: __onNameLost");
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(settings(), hardenedSettings);
    EXPECT_EQ(device.servicePid(), service.pid());
}

TEST(SystemBus, ServiceWorksWithoutOne) {
    const TestDevice device;
    const ServiceProcess service(device, environmentWith(device, "unix:path=/nowhere"));
    device.waitForLog("TestDbus.cpp: __onNameLost");

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(settings(), hardenedSettings);
    EXPECT_EQ(device.servicePid(), service.pid());
}

} // namespace
} // namespace system_test
