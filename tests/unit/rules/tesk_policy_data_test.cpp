#include <algorithm>
#include <type_traits>

#include "rules/TeskPolicyData.h"
#include "rules/TeskPolicyTable.h"
#include "unit_test.h"

namespace {

TEST(PolicyData, NewRecordRequiresNothingAndAllowsEverything) {
    const std::vector<std::string> expected{"0", "0", "1", "0", "0", "0", "0", "0", "1", "0", "0", "0",
                                            "0", "2", "1", "1", "1", "1", "1", "1", "1", "1", "",  ""};

    EXPECT_EQ(fieldsOf(TeskPolicyData()), expected);
}

TEST(PolicyData, FieldsLieInTheOrderOfTheColumns) {
    const TeskPolicyData data;
    EXPECT_TRUE(
        std::is_sorted(TeskPolicyTable::numbers.begin(), TeskPolicyTable::numbers.end(),
                       [&](const auto& one, const auto& other) { return &(data.*one.field) < &(data.*other.field); }));
    EXPECT_LT(&data.accountName, &data.displayName);
}

TEST(PolicyData, DestructorIsVirtual) {
    EXPECT_TRUE(std::has_virtual_destructor_v<TeskPolicyData>);
}

} // namespace
