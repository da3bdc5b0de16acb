#include <app_common.h>
#include <gtest/gtest.h>

#include "device/process_handle.h"
#include "device_state.h"
#include "messages.h"
#include "service_process.h"
#include "test_device.h"

namespace system_test {
namespace {

using namespace std::chrono_literals;

/// More than the ten seconds after which a service without work ends.
constexpr auto longerThanIdle = 12s;

/// More than half of them.
constexpr auto mostOfIdle = 6s;

bool endsWithin(const ServiceProcess& service, std::chrono::milliseconds time) {
    const auto process = deskwatch::ProcessHandle::open(service.pid());
    return !process || process->waitForEnd(time);
}

TEST(IdleExit, ServiceWithNothingLeftToDoEndsAndTheNextLaunchBringsItBack) {
    const TestDevice device;
    const ServiceProcess service(device);
    device.waitForLog("STOP killer!");
    device.send("req_update_policy", policyUpdate({alice(defaultPolicy)}));
    ASSERT_EQ(key(keys::passwordApplied), 1);
    ASSERT_EQ(key(keys::encryptionApplied), 1);

    EXPECT_EQ(service.waitForExit(), 0);

    EXPECT_EQ(device.log().count("Goodbye World!"), 1);
    EXPECT_FALSE(device.isServiceRunning());
    device.launchService();
    EXPECT_NE(device.servicePid(), service.pid());
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    EXPECT_EQ(settings(), hardenedSettings);
}

TEST(IdleExit, KeyAtZeroKeepsTheServiceAlive) {
    const TestDevice device;
    const ServiceProcess service(device);
    device.waitForLog("STOP killer!");
    setKey(keys::encryptionApplied, 1);
    setKey(keys::passwordApplied, 1);
    device.waitForLog("REFRESH killer!");
    const int stops = device.log().count("STOP killer!");

    setKey(keys::passwordApplied, 0);

    device.waitForLog("STOP killer!", stops + 1);
    EXPECT_FALSE(endsWithin(service, longerThanIdle));
    EXPECT_EQ(device.servicePid(), service.pid());
}

TEST(IdleExit, LaunchStartsTheCountAgain) {
    const TestDevice device;
    const ServiceProcess service(device);
    device.waitForLog("STOP killer!");
    setKey(keys::encryptionApplied, 1);
    setKey(keys::passwordApplied, 1);
    device.waitForLog("REFRESH killer!");
    ASSERT_FALSE(endsWithin(service, mostOfIdle));

    device.launchService();

    EXPECT_FALSE(endsWithin(service, mostOfIdle)) << "the first count would have ended it";
    EXPECT_EQ(service.waitForExit(), 0);
}

TEST(DeviceEvent, ReachesTheService) {
    const TestDevice device;
    device.launchService();

    device.companions().announce(APP_EVENT_LOW_MEMORY);
    EXPECT_EQ(device.log().count("Low memory!"), 1);

    device.companions().announce(APP_EVENT_LOW_BATTERY);
    EXPECT_EQ(device.log().count("Low battery!"), 1);
}

} // namespace
} // namespace system_test
