#include "device_state.h"
#include "messages.h"
#include "process_handle.h"
#include "service_process.h"
#include "watch.h"

#include <app_common.h>
#include <gtest/gtest.h>

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
    const Watch watch;
    const ServiceProcess service(watch);
    watch.waitForLog("STOP killer!");
    watch.send("req_update_policy", policyUpdate({alice(defaultPolicy)}));
    ASSERT_EQ(key(keys::passwordApplied), 1);
    ASSERT_EQ(key(keys::encryptionApplied), 1);

    EXPECT_EQ(service.waitForExit(), 0);

    EXPECT_EQ(watch.log().count("Goodbye World!"), 1);
    EXPECT_FALSE(watch.isServiceRunning());
    watch.launchService();
    EXPECT_NE(watch.servicePid(), service.pid());
    watch.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    EXPECT_EQ(settings(), (Settings{128, 4, 10, 1, 900, 365, 4, 1, 1, 1, 1}));
}

TEST(IdleExit, KeyAtZeroKeepsTheServiceAlive) {
    const Watch watch;
    const ServiceProcess service(watch);
    watch.waitForLog("STOP killer!");
    setKey(keys::encryptionApplied, 1);
    setKey(keys::passwordApplied, 1);
    watch.waitForLog("REFRESH killer!");
    const int stops = watch.log().count("STOP killer!");

    setKey(keys::passwordApplied, 0);

    watch.waitForLog("STOP killer!", stops + 1);
    EXPECT_FALSE(endsWithin(service, longerThanIdle));
    EXPECT_EQ(watch.servicePid(), service.pid());
}

TEST(IdleExit, LaunchStartsTheCountAgain) {
    const Watch watch;
    const ServiceProcess service(watch);
    watch.waitForLog("STOP killer!");
    setKey(keys::encryptionApplied, 1);
    setKey(keys::passwordApplied, 1);
    watch.waitForLog("REFRESH killer!");
    ASSERT_FALSE(endsWithin(service, mostOfIdle));

    watch.launchService();

    EXPECT_FALSE(endsWithin(service, mostOfIdle)) << "the first count would have ended it";
    EXPECT_EQ(service.waitForExit(), 0);
}

TEST(DeviceEvent, LowMemoryIsLogged) {
    const Watch watch;
    watch.launchService();

    watch.companions().announce(APP_EVENT_LOW_MEMORY);

    EXPECT_EQ(watch.log().count("Low memory!"), 1);
    EXPECT_EQ(watch.log().count("Low battery!"), 0);
    EXPECT_TRUE(watch.isServiceRunning());
}

TEST(DeviceEvent, LowBatteryIsLogged) {
    const Watch watch;
    watch.launchService();

    watch.companions().announce(APP_EVENT_LOW_BATTERY);

    EXPECT_EQ(watch.log().count("Low battery!"), 1);
    EXPECT_EQ(watch.log().count("Low memory!"), 0);
    EXPECT_TRUE(watch.isServiceRunning());
}

TEST(DeviceEvent, TurnedWatchIsTraced) {
    const Watch watch;
    watch.launchService();

    watch.companions().announce(APP_EVENT_DEVICE_ORIENTATION_CHANGED);

    EXPECT_EQ(watch.log().count("appDeviceOrientationChanged"), 2);
}

TEST(DeviceEvent, OthersAreNotListenedTo) {
    const Watch watch;
    watch.launchService();
    watch.waitForLog("__onNameAcquired"); // the last that a start logs
    const auto before = watch.log().count("TESK_CONSUMER");

    watch.companions().announce(APP_EVENT_LANGUAGE_CHANGED);
    watch.companions().announce(APP_EVENT_REGION_FORMAT_CHANGED);
    watch.companions().announce(APP_EVENT_SUSPENDED_STATE_CHANGED);

    EXPECT_EQ(watch.log().count("TESK_CONSUMER"), before);
}

} // namespace
} // namespace system_test
