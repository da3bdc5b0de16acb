#include <gtest/gtest.h>

#include "device/application_ids.h"
#include "device/bus_process.h"
#include "device_state.h"
#include "messages.h"
#include "service_process.h"
#include "test_device.h"

namespace system_test {
namespace {

TEST(SystemBus, ServiceOutlivesItAndGoesOnEnforcing) {
    const TestDevice other; // its bus is the system bus here: not the device's own, as on a device
    const TestDevice device;
    auto environment = device.booted().appEnvironment(ids::service);
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = other.booted().busAddress();
    const ServiceProcess service(device, environment);
    device.waitForLog("TestDbus.cpp: __onNameAcquired");

    deskwatch::BusProcess(other.layout().busRecord()).stop(std::chrono::seconds(20));
    device.waitForLog("TestDbus.cpp: __onNameLost");
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(settings(), hardenedSettings);
    EXPECT_EQ(device.servicePid(), service.pid());
}

} // namespace
} // namespace system_test
