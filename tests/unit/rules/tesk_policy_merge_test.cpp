#include <limits>
#include <memory>

#include "rules/TeskPolicyMerge.h"
#include "unit_test.h"

namespace {

using Data = TeskPolicyData;

TeskPolicyDataList listOf(std::initializer_list<TeskPolicyData> accounts) {
    TeskPolicyDataList list;
    for (const auto& data : accounts) {
        list.push_back(std::make_shared<TeskPolicyData>(data));
    }
    return list;
}

TeskPolicyData lengthAccount(int accountId, int minLength) {
    auto data = passwordAccount(accountId);
    data.minDevicePasswordLength = minLength;
    return data;
}

/// The values of a field of accounts that differ in nothing else, and the merged one.
struct Values {
    std::vector<int> ofAccounts;
    int merged;
};

/// How a field is merged.
struct Law {
    const char* name;
    std::vector<std::int32_t Data::*> fields;
    std::vector<Values> cases;
};

const std::vector<Law>& laws() {
    static const std::vector<Law> all{
        {"OnceRequiredStaysRequired",
         {&Data::devicePasswordEnabled, &Data::alphanumericDevicePasswordRequired, &Data::requireDeviceEncryption},
         // of values that are no flags, that of the first account that differs
         {{{0, 0}, 0}, {{0, 1}, 1}, {{1, 0}, 1}, {{0, 7, 1}, 7}, {{0, 1, 7}, 1}}},
        {"OnceForbiddenStaysForbidden",
         {&Data::allowSimplePassword, &Data::allowWifi, &Data::allowTextMessaging, &Data::allowPopimapEmail},
         {{{1, 1}, 1}, {{1, 0}, 0}, {{0, 1}, 0}, {{1, 5, 0}, 5}}},
        {"LargestWins",
         {&Data::minDevicePasswordComplexCharacters, &Data::minDevicePasswordLength},
         {{{0, 4}, 4}, {{4, 0}, 4}, {{4, 8}, 8}, {{8, 4}, 8}, {{-3}, -3}, {{-3, -5}, -3}}},
        {"SmallestNonZeroWins",
         {&Data::maxDevicePasswordFailedAttempts, &Data::maxInactivityTimeDeviceLock, &Data::devicePasswordExpiration,
          &Data::devicePasswordHistory},
         {{{0, 0}, 0}, {{0, 4}, 4}, {{4, 0}, 4}, {{5, 3}, 3}, {{3, 5}, 3}, {{3, -1}, -1}}},
        {"SmallestLevelWins",
         {&Data::allowBluetooth},
         // two is also the value of a record that no account has touched yet
         {{{2}, 2}, {{1, 0}, 0}, {{0, 1}, 0}, {{0, 2}, 0}, {{2, 1}, 1}, {{2, 3}, 3}}},
        {"NeverMergedAndAllowedAtFirst",
         {&Data::passwordRecoveryEnabled, &Data::allowBrowser, &Data::allowCamera, &Data::allowDesktopSync,
          &Data::allowInternetSharing, &Data::allowStorageCard},
         {{{0}, 1}, {{9, 0}, 1}}},
        {"NeverMergedAndZeroAtFirst", {&Data::accountId, &Data::requireStorageCardEncryption}, {{{1}, 0}, {{9, 0}, 0}}},
    };
    return all;
}

class MergeLawTest : public ::testing::TestWithParam<Law> {};

TEST_P(MergeLawTest, HoldsForEachOfItsFields) {
    for (std::size_t i = 0; i < GetParam().fields.size(); ++i) {
        for (const auto& [values, merged] : GetParam().cases) {
            TeskPolicyDataList accounts;
            for (const int value : values) {
                accounts.push_back(std::make_shared<TeskPolicyData>());
                (*accounts.back()).*GetParam().fields[i] = value;
            }
            EXPECT_EQ(TeskPolicyMerge::strongest(accounts).*GetParam().fields[i], merged)
                << "field " << i << " of accounts with " << ::testing::PrintToString(values);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(, MergeLawTest, ::testing::ValuesIn(laws()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(PolicyMerge, NoAccountGivesTheStartValues) {
    EXPECT_EQ(fieldsOf(TeskPolicyMerge::strongest({})), fieldsOf(TeskPolicyData()));
}

TEST(PolicyMerge, NamesAreNeverMerged) {
    auto data = account(1);
    data.accountName = "alice@contoso.example";
    data.displayName = "Alice";

    const auto strong = TeskPolicyMerge::strongest(listOf({data}));

    EXPECT_EQ(strong.accountName + strong.displayName, "");
}

TEST(PolicyMerge, LimitsOfAnAccountWithoutPasswordTakePart) {
    auto lax = account(1);
    lax.minDevicePasswordLength = 9;

    EXPECT_EQ(TeskPolicyMerge::strongest(listOf({lax, passwordAccount(2)})).minDevicePasswordLength, 9);
}

int enforcingAccountOf(std::initializer_list<TeskPolicyData> accounts) {
    return TeskPolicyMerge::passwordEnforcingAccountId(listOf(accounts));
}

TEST(PasswordEnforcingAccount, IsZeroWithoutAPasswordAccount) {
    EXPECT_EQ(enforcingAccountOf({}), 0);
    EXPECT_EQ(enforcingAccountOf({account(1), account(2)}), 0);
}

TEST(PasswordEnforcingAccount, ScoreOfZeroStillReplacesTheStartValueAndANegativeOneNever) {
    EXPECT_EQ(enforcingAccountOf({lengthAccount(5, 0)}), 5);
    EXPECT_EQ(enforcingAccountOf({lengthAccount(5, -1)}), 0);
}

TEST(PasswordEnforcingAccount, EqualScoresGoToTheLaterAccount) {
    EXPECT_EQ(enforcingAccountOf({passwordAccount(1), passwordAccount(2)}), 2);
    EXPECT_EQ(enforcingAccountOf({passwordAccount(2), passwordAccount(1)}), 1);
}

TEST(PasswordEnforcingAccount, LongerPasswordOutdoesAShorterOneUnlessItIsSwitchedOff) {
    EXPECT_EQ(enforcingAccountOf({lengthAccount(1, 8), lengthAccount(2, 7)}), 1);

    auto off = lengthAccount(1, 8);
    off.devicePasswordEnabled = 0;
    EXPECT_EQ(enforcingAccountOf({lengthAccount(2, 7), off}), 2);
}

TEST(PasswordScore, CountsLengthSimplicityAndAlphanumericRules) {
    auto data = lengthAccount(1, 6);
    EXPECT_EQ(TeskPolicyMerge::passwordScore(data), 6);

    data.allowSimplePassword = 0;
    EXPECT_EQ(TeskPolicyMerge::passwordScore(data), 7);

    data.minDevicePasswordComplexCharacters = 3;
    EXPECT_EQ(TeskPolicyMerge::passwordScore(data), 7);

    data.alphanumericDevicePasswordRequired = 1;
    EXPECT_EQ(TeskPolicyMerge::passwordScore(data), 26);
}

TEST(PasswordScore, NoStoredValueOverflowsIt) {
    constexpr auto largest = std::numeric_limits<std::int32_t>::max();
    auto data = lengthAccount(1, largest);
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = largest;
    data.allowSimplePassword = 0;

    EXPECT_EQ(TeskPolicyMerge::passwordScore(data), std::int64_t{2} * largest + 17);
    EXPECT_EQ(enforcingAccountOf({data, passwordAccount(2)}), 1);
}

} // namespace
