#include <gtest/gtest.h>
#include <message_port.h>

#include <csignal>

#include "device/process_handle.h"
#include "device_state.h"
#include "messages.h"
#include "service_process.h"
#include "test_device.h"

namespace system_test {
namespace {

/// Waits until a service that was started by hand is in its main loop.
void waitUntilUp(const TestDevice& device) {
    constexpr int enterAndLeave = 2;
    device.waitForLog("TeskConsumer.cpp: appControl", enterAndLeave);
}

TEST(Start, WithAccountsEnforcesThemAgain) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    ASSERT_EQ(device.companions().launches(ids::popup).size(), 1U);
    device.endService();
    setKey(keys::passwordApplied, 1);

    device.launchService();

    EXPECT_EQ(settings(), hardenedSettings);
    EXPECT_EQ(key(keys::passwordApplied), 0);
    EXPECT_EQ(device.companions().launches(ids::popup).size(), 2U);
    EXPECT_EQ(device.log().count("Password policy requires stronger password."), 2);
}

TEST(Start, SecondInstanceIsRefused) {
    const TestDevice device;
    device.launchService();
    const auto first = device.servicePid();

    const ServiceProcess second(device);

    const auto status = second.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_EQ(device.log().count("an instance of com.velmor.tesk-agent is running already"), 1);
    EXPECT_EQ(device.servicePid(), first);
}

TEST(End, TerminationClosesThePortAndEndsWithStatusZero) {
    const TestDevice device;
    const ServiceProcess service(device);
    waitUntilUp(device);

    kill(service.pid(), SIGTERM);

    EXPECT_EQ(service.waitForExit(), 0);
    EXPECT_EQ(device.log().count("Goodbye World!"), 1);
    EXPECT_EQ(device.log().count("Failed message port unregister"), 0);
    EXPECT_EQ(sendMessage({{"req", "chk_password_policy"}, {"msg", ""}}), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
}

TEST(End, LostBusEndsTheServiceWithAClearError) {
    const TestDevice device;
    const ServiceProcess service(device);
    waitUntilUp(device);

    device.booted().off();

    const auto status = service.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_EQ(device.log().count("the connection to the bus was lost, the application ends"), 1);
}

} // namespace
} // namespace system_test
