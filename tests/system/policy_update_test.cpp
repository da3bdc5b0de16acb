#include <gtest/gtest.h>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

TEST(PolicyUpdate, HardenedPolicyAsksForALockAndOffersEncryption) {
    const TestDevice device;
    setKey(keys::inputFinished, 7);
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(settings(), hardenedSettings);
    EXPECT_EQ(key(keys::passwordApplied), 0);
    EXPECT_EQ(key(keys::encryptionApplied), 0);
    EXPECT_EQ(key(keys::inputFinished), 7);
    EXPECT_EQ(enforcingAccount(), 1);
    EXPECT_EQ(device.companions().launches(ids::popup), std::vector({Launch{ids::service,
                                                                            true,
                                                                            {{"OPERATION", "SET_PRIVACY_LOCK"},
                                                                             {"ACCOUNT_NAME", "alice@contoso.example"},
                                                                             {"password_min_length", "4"},
                                                                             {"password_max_length", "16"},
                                                                             {"allow_simple", "0"},
                                                                             {"password_required", "1"}}}}));
    EXPECT_EQ(device.companions().launches(ids::encryptionSettings),
              std::vector({Launch{ids::service, false, {{"__OPERATION__", "__ENABLE_ENCRYPTION_MENU__"}}}}));
}

TEST(PolicyUpdate, LongerPinInPlaceOfAShorterOneIsHeard) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    setKey(keys::lockType, static_cast<int>(deskwatch::Lock::Pin));
    device.waitUntil("the first PIN is applied", [] { return key(keys::passwordApplied) == 1; });
    std::string eightDigits = pinPolicy;
    const std::string length = "\"minDevicePasswordLength\":";
    eightDigits.replace(eightDigits.find(length + "0"), length.size() + 1, length + "8");
    device.send("req_update_policy", policyUpdate({alice(eightDigits.c_str())}));
    ASSERT_EQ(key(keys::passwordApplied), 0);

    setKey(keys::lockType, static_cast<int>(deskwatch::Lock::Pin));

    device.waitUntil("the longer PIN is applied", [] { return key(keys::passwordApplied) == 1; });
}

TEST(PolicyUpdate, RegionAndEncryptionOfTheWatchCount) {
    const TestDevice device({deskwatch::Lock::None, true, "KR", false});
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));

    EXPECT_EQ(settings().minLength, 6);
    EXPECT_EQ(settings().encryption, 0);
    EXPECT_EQ(key(keys::encryptionApplied), 1);
    EXPECT_FALSE(device.companions().isRunning(ids::encryptionSettings));
}

} // namespace
} // namespace system_test
