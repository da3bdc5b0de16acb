#include <gtest/gtest.h>

#include <csignal>

#include "device/process_handle.h"
#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

TEST(Popup, PopupThatDiesDoesNothingAndComesBackWhenTheMailApplicationAsks) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    const auto service = device.servicePid();
    device.companions().settle(ids::popup);
    const auto popup = deskwatch::ProcessHandle::open(device.companions().processOf(ids::popup));
    ASSERT_TRUE(popup);

    popup->signal(SIGKILL);

    device.waitForLog("the launch of " + std::string(ids::popup) + " failed");
    device.companions().settle(ids::service);
    EXPECT_FALSE(device.companions().isRunning(ids::lockSettings));
    EXPECT_EQ(device.log().count("[RELAY MSG]"), 0);
    EXPECT_EQ(device.servicePid(), service);
    device.send("chk_password_policy", "");
    EXPECT_EQ(device.companions().launches(ids::popup).size(), 1U);
}

} // namespace
} // namespace system_test
