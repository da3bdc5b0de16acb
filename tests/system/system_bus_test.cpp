#include <gtest/gtest.h>

#include "device/application_ids.h"
#include "device/bus_process.h"
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
    const TestDevice other; // its bus is the system bus here: not the device's own, as on a device
    const TestDevice device;
    const ServiceProcess service(device, environmentWith(device, other.booted().busAddress()));
    device.waitForLog("TestDbus.cpp: __onNameAcquired");

    deskwatch::BusProcess(other.layout().busRecord()).stop();
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
