#include <gtest/gtest.h>

#include <csignal>

#include "device/process_handle.h"
#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

/// A watch whose popup asks for a lock and waits for the wearer.
class Popup : public testing::Test {
protected:
    Popup() {
        device_.launchService();
        device_.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
        EXPECT_EQ(device_.companions().launches(ids::popup).size(), 1U);
    }

    const TestDevice device_;
};

TEST_F(Popup, SyncOffTellsTheMailApplicationOnce) {
    device_.companions().settle(ids::mail);

    device_.companions().answer(ids::popup, "sync_off_ok");

    EXPECT_EQ(device_.companions().messages(),
              std::vector({Message{ids::service, {{"req", "req_disable_password_eas_accounts"}, {"msg", ""}}}}));
    EXPECT_FALSE(device_.companions().isRunning(ids::lockSettings));
}

TEST_F(Popup, SyncOffWithoutAMailApplicationIsLost) {
    device_.companions().answer(ids::popup, "sync_off_ok");

    EXPECT_EQ(device_.log().count("[RELAY MSG] req_disable_password_eas_accounts : "), 1);
    EXPECT_FALSE(device_.companions().isRunning(ids::mail)) << "a message starts nothing";
    EXPECT_TRUE(device_.isServiceRunning());
}

TEST_F(Popup, PopupThatDiesDoesNothingAndComesBackWhenTheMailApplicationAsks) {
    const auto service = device_.servicePid();
    const auto popup = deskwatch::ProcessHandle::open(device_.companions().processOf(ids::popup));
    ASSERT_TRUE(popup);

    popup->signal(SIGKILL);

    device_.waitForLog("the launch of " + std::string(ids::popup) + " failed");
    device_.companions().settle(ids::service);
    EXPECT_FALSE(device_.companions().isRunning(ids::lockSettings));
    EXPECT_EQ(device_.log().count("[RELAY MSG]"), 0);
    EXPECT_EQ(device_.servicePid(), service);
    device_.send("chk_password_policy", "");
    EXPECT_EQ(device_.companions().launches(ids::popup).size(), 1U);
}

} // namespace
} // namespace system_test
