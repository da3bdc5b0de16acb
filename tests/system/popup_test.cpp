#include "device_state.h"
#include "messages.h"
#include "process_handle.h"
#include "watch.h"

#include <gtest/gtest.h>

#include <csignal>

namespace system_test {
namespace {

/// A watch whose popup asks for a lock and waits for the wearer.
class Popup : public testing::Test {
protected:
    Popup() {
        watch_.launchService();
        watch_.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
        EXPECT_EQ(watch_.companions().launches(ids::popup).size(), 1U);
    }

    void expectNothingHappened() const {
        EXPECT_FALSE(watch_.companions().isRunning(ids::lockSettings));
        EXPECT_FALSE(watch_.companions().isRunning(ids::mail));
        EXPECT_EQ(watch_.log().count("[RELAY MSG]"), 0);
        EXPECT_EQ(watch_.log().count("__enforcePassword"), 0);
    }

    const Watch watch_;
};

TEST_F(Popup, OkOpensTheLockSettings) {
    watch_.companions().answer(ids::popup, "ok");

    EXPECT_EQ(watch_.companions().launches(ids::lockSettings),
              std::vector({Launch{ids::service, false, {{"setting_state", "eas"}}}}));
    EXPECT_FALSE(watch_.companions().isRunning(ids::mail));
}

TEST_F(Popup, SyncOffTellsTheMailApplicationOnce) {
    watch_.companions().settle(ids::mail);

    watch_.companions().answer(ids::popup, "sync_off_ok");

    EXPECT_EQ(watch_.companions().messages(),
              std::vector({Message{ids::service, {{"req", "req_disable_password_eas_accounts"}, {"msg", ""}}}}));
    EXPECT_FALSE(watch_.companions().isRunning(ids::lockSettings));
}

TEST_F(Popup, SyncOffWithoutAMailApplicationIsLost) {
    watch_.companions().answer(ids::popup, "sync_off_ok");

    EXPECT_EQ(watch_.log().count("[RELAY MSG] req_disable_password_eas_accounts : "), 1);
    EXPECT_FALSE(watch_.companions().isRunning(ids::mail)) << "a message starts nothing";
    EXPECT_TRUE(watch_.isServiceRunning());
}

TEST_F(Popup, AnyOtherAnswerDoesNothing) {
    watch_.companions().answer(ids::popup, "later");

    expectNothingHappened();
}

TEST_F(Popup, EmptyAnswerDoesNothing) {
    watch_.companions().answer(ids::popup, "");

    expectNothingHappened();
}

TEST_F(Popup, PopupThatDiesDoesNothing) {
    const auto service = watch_.servicePid();
    const auto popup = deskwatch::ProcessHandle::open(watch_.companions().processOf(ids::popup));
    ASSERT_TRUE(popup);

    popup->signal(SIGKILL);

    watch_.waitForLog("the launch of " + std::string(ids::popup) + " failed");
    watch_.companions().settle(ids::service);
    expectNothingHappened();
    EXPECT_EQ(watch_.servicePid(), service);
}

TEST_F(Popup, PopupThatDiedComesBackWhenTheMailApplicationAsks) {
    const auto popup = deskwatch::ProcessHandle::open(watch_.companions().processOf(ids::popup));
    ASSERT_TRUE(popup);
    popup->signal(SIGKILL);
    watch_.waitForLog("the launch of " + std::string(ids::popup) + " failed");

    watch_.send("chk_password_policy", "");

    EXPECT_EQ(watch_.companions().launches(ids::popup).size(), 1U);
}

TEST_F(Popup, EncryptionIsNotAskedForBeforeTheLockIsSet) {
    watch_.send("chk_device_encryption_policy", "");

    EXPECT_FALSE(watch_.companions().isRunning(ids::encryptionPopup));
}

TEST_F(Popup, EncryptionIsAskedForOnceTheLockIsSet) {
    setKey(keys::passwordApplied, 1);

    watch_.send("chk_device_encryption_policy", "");

    EXPECT_EQ(watch_.companions().launches(ids::encryptionPopup),
              std::vector({Launch{ids::service, false, {{"type", "encrypt"}}}}));
}

} // namespace
} // namespace system_test
