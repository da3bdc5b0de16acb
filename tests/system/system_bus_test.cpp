#include "application_ids.h"
#include "bus_daemon.h"
#include "device_state.h"
#include "messages.h"
#include "service_process.h"
#include "watch.h"

#include <gtest/gtest.h>

namespace system_test {
namespace {

deskwatch::Environment environmentWith(const Watch& watch, const BusDaemon& systemBus) {
    auto environment = watch.device().appEnvironment(ids::service);
    environment["DBUS_SYSTEM_BUS_ADDRESS"] = systemBus.address();
    return environment;
}

TEST(SystemBus, ServiceOutlivesItAndGoesOnEnforcing) {
    const BusDaemon systemBus("--session"); // not the device's own bus, as on a device
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
