#include <limits>
#include <memory>

#include "rules/TeskPolicyMerge.h"
#include "unit_test.h"

namespace {

using Number = std::int32_t TeskPolicyData::*;

TeskPolicyDataList listOf(std::initializer_list<TeskPolicyData> accounts) {
    TeskPolicyDataList list;
    for (const auto& data : accounts) {
        list.push_back(std::make_shared<TeskPolicyData>(data));
    }
    return list;
}

TeskPolicyData accountWith(Number field, int value) {
    TeskPolicyData data;
    data.*field = value;
    return data;
}

/// The merged value of a field of accounts that differ in nothing else.
int merged(Number field, std::initializer_list<int> values) {
    TeskPolicyDataList accounts;
    for (const int value : values) {
        accounts.push_back(std::make_shared<TeskPolicyData>(accountWith(field, value)));
    }
    return TeskPolicyMerge::strongest(accounts).*field;
}

void expectOnceRequiredStaysRequired(Number field) {
    EXPECT_EQ(merged(field, {0, 0}), 0);
    EXPECT_EQ(merged(field, {0, 1}), 1);
    EXPECT_EQ(merged(field, {1, 0}), 1);
    // A value that is no flag: the first account that differs decides.
    EXPECT_EQ(merged(field, {0, 7, 1}), 7);
    EXPECT_EQ(merged(field, {0, 1, 7}), 1);
}

void expectOnceForbiddenStaysForbidden(Number field) {
    EXPECT_EQ(merged(field, {1, 1}), 1);
    EXPECT_EQ(merged(field, {1, 0}), 0);
    EXPECT_EQ(merged(field, {0, 1}), 0);
    EXPECT_EQ(merged(field, {1, 5, 0}), 5);
}

void expectLargest(Number field) {
    EXPECT_EQ(merged(field, {0, 4}), 4);
    EXPECT_EQ(merged(field, {4, 0}), 4);
    EXPECT_EQ(merged(field, {4, 8}), 8);
    EXPECT_EQ(merged(field, {8, 4}), 8);
    EXPECT_EQ(merged(field, {-3}), -3);
    EXPECT_EQ(merged(field, {-3, -5}), -3);
}

void expectSmallestNonZero(Number field) {
    EXPECT_EQ(merged(field, {0, 0}), 0);
    EXPECT_EQ(merged(field, {0, 4}), 4);
    EXPECT_EQ(merged(field, {4, 0}), 4);
    EXPECT_EQ(merged(field, {5, 3}), 3);
    EXPECT_EQ(merged(field, {3, 5}), 3);
    EXPECT_EQ(merged(field, {3, -1}), -1);
}

void expectNotMerged(Number field, int start) {
    EXPECT_EQ(merged(field, {0}), start);
    EXPECT_EQ(merged(field, {9, 0}), start);
}

TEST(PolicyMerge, NoAccountGivesTheStartValues) {
    EXPECT_EQ(fieldsOf(TeskPolicyMerge::strongest({})), fieldsOf(TeskPolicyData()));
}

TEST(PolicyMerge, PasswordOnceRequiredStaysRequired) {
    expectOnceRequiredStaysRequired(&TeskPolicyData::devicePasswordEnabled);
}

TEST(PolicyMerge, SimplePasswordOnceForbiddenStaysForbidden) {
    expectOnceForbiddenStaysForbidden(&TeskPolicyData::allowSimplePassword);
}

TEST(PolicyMerge, AlphanumericOnceRequiredStaysRequired) {
    expectOnceRequiredStaysRequired(&TeskPolicyData::alphanumericDevicePasswordRequired);
}

TEST(PolicyMerge, LargestNumberOfComplexCharactersWins) {
    expectLargest(&TeskPolicyData::minDevicePasswordComplexCharacters);
}

TEST(PolicyMerge, LargestMinimumLengthWins) {
    expectLargest(&TeskPolicyData::minDevicePasswordLength);
}

TEST(PolicyMerge, SmallestNonZeroFailedAttemptsWin) {
    expectSmallestNonZero(&TeskPolicyData::maxDevicePasswordFailedAttempts);
}

TEST(PolicyMerge, SmallestNonZeroInactivityWins) {
    expectSmallestNonZero(&TeskPolicyData::maxInactivityTimeDeviceLock);
}

TEST(PolicyMerge, SmallestNonZeroExpirationWins) {
    expectSmallestNonZero(&TeskPolicyData::devicePasswordExpiration);
}

TEST(PolicyMerge, SmallestNonZeroHistoryWins) {
    expectSmallestNonZero(&TeskPolicyData::devicePasswordHistory);
}

TEST(PolicyMerge, EncryptionOnceRequiredStaysRequired) {
    expectOnceRequiredStaysRequired(&TeskPolicyData::requireDeviceEncryption);
}

TEST(PolicyMerge, WifiOnceForbiddenStaysForbidden) {
    expectOnceForbiddenStaysForbidden(&TeskPolicyData::allowWifi);
}

TEST(PolicyMerge, TextMessagesOnceForbiddenStayForbidden) {
    expectOnceForbiddenStaysForbidden(&TeskPolicyData::allowTextMessaging);
}

TEST(PolicyMerge, PopAndImapOnceForbiddenStayForbidden) {
    expectOnceForbiddenStaysForbidden(&TeskPolicyData::allowPopimapEmail);
}

TEST(PolicyMerge, SmallestBluetoothLevelWins) {
    EXPECT_EQ(merged(&TeskPolicyData::allowBluetooth, {2}), 2);
    EXPECT_EQ(merged(&TeskPolicyData::allowBluetooth, {1, 0}), 0);
    EXPECT_EQ(merged(&TeskPolicyData::allowBluetooth, {0, 1}), 0);
    EXPECT_EQ(merged(&TeskPolicyData::allowBluetooth, {0, 2}), 0);
    EXPECT_EQ(merged(&TeskPolicyData::allowBluetooth, {2, 1}), 1);
    // Two is also the value of a record that no account has touched yet.
    EXPECT_EQ(merged(&TeskPolicyData::allowBluetooth, {2, 3}), 3);
}

TEST(PolicyMerge, OtherFieldsAreNeverMerged) {
    expectNotMerged(&TeskPolicyData::accountId, 0);
    expectNotMerged(&TeskPolicyData::passwordRecoveryEnabled, 1);
    expectNotMerged(&TeskPolicyData::requireStorageCardEncryption, 0);
    expectNotMerged(&TeskPolicyData::allowBrowser, 1);
    expectNotMerged(&TeskPolicyData::allowCamera, 1);
    expectNotMerged(&TeskPolicyData::allowDesktopSync, 1);
    expectNotMerged(&TeskPolicyData::allowInternetSharing, 1);
    expectNotMerged(&TeskPolicyData::allowStorageCard, 1);
}

TEST(PolicyMerge, NamesAreNeverMerged) {
    auto data = account(1);
    data.accountName = "alice@contoso.example";
    data.displayName = "Alice";

    const auto strong = TeskPolicyMerge::strongest(listOf({data}));

    EXPECT_EQ(strong.accountName, "");
    EXPECT_EQ(strong.displayName, "");
}

TEST(PolicyMerge, RemovingTheStricterAccountRestoresTheOther) {
    auto strict = passwordAccount(2);
    strict.minDevicePasswordLength = 8;
    strict.devicePasswordHistory = 2;
    auto lax = passwordAccount(1);
    lax.minDevicePasswordLength = 4;
    lax.devicePasswordHistory = 5;

    EXPECT_EQ(TeskPolicyMerge::strongest(listOf({lax, strict})).minDevicePasswordLength, 8);
    EXPECT_EQ(TeskPolicyMerge::strongest(listOf({lax})).minDevicePasswordLength, 4);
    EXPECT_EQ(TeskPolicyMerge::strongest(listOf({lax})).devicePasswordHistory, 5);
}

TEST(PolicyMerge, LimitsOfAnAccountWithoutPasswordTakePart) {
    auto lax = account(1);
    lax.minDevicePasswordLength = 9;

    EXPECT_EQ(TeskPolicyMerge::strongest(listOf({lax, passwordAccount(2)})).minDevicePasswordLength, 9);
}

TEST(PasswordEnforcingAccount, IsZeroWithoutAPasswordAccount) {
    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId({}), 0);
    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId(listOf({account(1), account(2)})), 0);
}

TEST(PasswordEnforcingAccount, ScoreOfZeroStillReplacesTheStartValue) {
    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId(listOf({passwordAccount(5)})), 5);
}

TEST(PasswordEnforcingAccount, NegativeScoreNeverWins) {
    auto data = passwordAccount(5);
    data.minDevicePasswordLength = -1;

    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId(listOf({data})), 0);
}

TEST(PasswordEnforcingAccount, EqualScoresGoToTheLaterAccount) {
    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId(listOf({passwordAccount(1), passwordAccount(2)})), 2);
    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId(listOf({passwordAccount(2), passwordAccount(1)})), 1);
}

TEST(PasswordEnforcingAccount, LongerPasswordOutdoesAShorterOne) {
    auto longer = passwordAccount(1);
    longer.minDevicePasswordLength = 8;
    auto shorter = passwordAccount(2);
    shorter.minDevicePasswordLength = 7;

    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId(listOf({longer, shorter})), 1);
}

TEST(PasswordEnforcingAccount, AccountWithoutPasswordIsSkipped) {
    auto longer = account(1);
    longer.minDevicePasswordLength = 16;

    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId(listOf({passwordAccount(2), longer})), 2);
}

TEST(PasswordScore, CountsLengthSimplicityAndAlphanumericRules) {
    auto data = passwordAccount(1);
    data.minDevicePasswordLength = 6;
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
    auto data = passwordAccount(1);
    data.minDevicePasswordLength = largest;
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = largest;
    data.allowSimplePassword = 0;

    EXPECT_EQ(TeskPolicyMerge::passwordScore(data), std::int64_t{2} * largest + 17);
    EXPECT_EQ(TeskPolicyMerge::passwordEnforcingAccountId(listOf({data, passwordAccount(2)})), 1);
}

} // namespace
