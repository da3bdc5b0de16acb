#include <algorithm>
#include <type_traits>

#include "rules/TeskPolicyData.h"
#include "unit_test.h"

namespace {

TEST(PolicyData, NewRecordRequiresNothingAndAllowsEverything) {
    const std::vector<std::string> expected{"0", "0", "1", "0", "0", "0", "0", "0", "1", "0", "0", "0",
                                            "0", "2", "1", "1", "1", "1", "1", "1", "1", "1", "",  ""};

    EXPECT_EQ(fieldsOf(TeskPolicyData()), expected);
}

TEST(PolicyData, NumbersAreSigned32BitValues) {
    EXPECT_TRUE((std::is_same_v<decltype(TeskPolicyData::accountId), std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(TeskPolicyData::allowBluetooth), std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(TeskPolicyData::allowWifi), std::int32_t>));
}

TEST(PolicyData, FieldsLieInTheOrderOfTheColumns) {
    const TeskPolicyData data;
    const std::vector<const std::int32_t*> inOrder{
        &data.accountId,
        &data.devicePasswordEnabled,
        &data.allowSimplePassword,
        &data.alphanumericDevicePasswordRequired,
        &data.minDevicePasswordComplexCharacters,
        &data.minDevicePasswordLength,
        &data.maxDevicePasswordFailedAttempts,
        &data.maxInactivityTimeDeviceLock,
        &data.passwordRecoveryEnabled,
        &data.devicePasswordExpiration,
        &data.devicePasswordHistory,
        &data.requireDeviceEncryption,
        &data.requireStorageCardEncryption,
        &data.allowBluetooth,
        &data.allowBrowser,
        &data.allowCamera,
        &data.allowPopimapEmail,
        &data.allowDesktopSync,
        &data.allowInternetSharing,
        &data.allowStorageCard,
        &data.allowTextMessaging,
        &data.allowWifi,
    };
    EXPECT_TRUE(std::is_sorted(inOrder.begin(), inOrder.end()));
    EXPECT_LT(&data.accountName, &data.displayName);
}

TEST(PolicyData, DestructorIsVirtual) {
    EXPECT_TRUE(std::has_virtual_destructor_v<TeskPolicyData>);
}

} // namespace
