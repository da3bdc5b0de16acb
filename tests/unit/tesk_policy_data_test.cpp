#include "TeskPolicyData.h"

#include <type_traits>

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
    const std::int32_t* first = &data.accountId;

    EXPECT_EQ(&data.devicePasswordEnabled - first, 1);
    EXPECT_EQ(&data.requireStorageCardEncryption - first, 12);
    EXPECT_EQ(&data.allowBluetooth - first, 13);
    EXPECT_EQ(&data.allowWifi - first, 21);
    EXPECT_LT(&data.accountName, &data.displayName);
}

TEST(PolicyData, DestructorIsVirtual) {
    EXPECT_TRUE(std::has_virtual_destructor_v<TeskPolicyData>);
}

} // namespace
