#include <gtest/gtest.h>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

constexpr int none = 0;
constexpr int pin = 1;

/// A launch request that says nothing but who sent it.
const Launch handBack{ids::service, false, {}};

/// A watch that waits for the wearer to set a lock, and to encrypt where the policy says so.
class LockMonitor : public testing::Test {
protected:
    void start(const char* policy) const {
        device_.launchService();
        device_.send("req_update_policy", policyUpdate({alice(policy)}));
        ASSERT_EQ(key(keys::passwordApplied), 0);
    }

    /// Sets the lock as the lock-screen settings do, and waits until the service has seen it.
    void setLock(int lock) {
        setKey(keys::lockType, lock);
        enterAndLeave_ += 2;
        device_.waitForLog("__lockTypeChangedCb", enterAndLeave_ + warnings_);
    }

    const TestDevice device_;
    int enterAndLeave_ = 0;
    int warnings_ = 0;
};

TEST_F(LockMonitor, LockThatIsSetIsNotedAndControlGoesBackToTheMailApplication) {
    start(pinPolicy);

    setLock(pin);

    EXPECT_EQ(key(keys::passwordApplied), 1);
    EXPECT_EQ(device_.companions().launches(ids::mail), std::vector{handBack});
    EXPECT_FALSE(device_.companions().isRunning(ids::encryptionPopup));
}

TEST_F(LockMonitor, EncryptionIsAskedForWhenThePolicyRequiresIt) {
    start(hardenedPolicy);

    setLock(pin);

    EXPECT_EQ(key(keys::passwordApplied), 1);
    EXPECT_EQ(device_.companions().launches(ids::encryptionPopup),
              std::vector({Launch{ids::service, false, {{"type", "encrypt"}}}}));
    EXPECT_EQ(device_.companions().launches(ids::mail), std::vector{handBack});
}

TEST_F(LockMonitor, SecondLockAsksForNothing) {
    start(hardenedPolicy);
    setLock(pin);

    warnings_ = 1;
    setLock(2);

    EXPECT_EQ(device_.log().count("Failed to get password policy applied value"), 1);
    EXPECT_EQ(device_.companions().launches(ids::encryptionPopup).size(), 1U);
    EXPECT_EQ(device_.companions().launches(ids::mail).size(), 1U);
}

TEST(LockMonitorOfALockedWatch, LockThatIsTakenAwayIsNotTakenForOne) {
    const TestDevice device({deskwatch::Lock::Pin, {}, {}, {}});
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));
    ASSERT_EQ(key(keys::passwordApplied), 0);

    setKey(keys::lockType, none);

    device.waitForLog("__lockTypeChangedCb", 2);
    EXPECT_EQ(key(keys::passwordApplied), 0);
    EXPECT_EQ(device.companions().launches(ids::mail), std::vector{handBack});
    EXPECT_FALSE(device.companions().isRunning(ids::encryptionPopup));
}

} // namespace
} // namespace system_test
