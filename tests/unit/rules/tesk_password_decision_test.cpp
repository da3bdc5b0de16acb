#include "rules/TeskPasswordDecision.h"
#include "unit_test.h"

namespace {

using Verdict = TeskPasswordVerdict;

/// What the device enforces or what is required of it: quality, length, complex characters.
TeskPasswordRules rules(int quality, int minLength = 0, int complexCharacters = 0) {
    TeskPasswordRules made;
    made.quality = quality;
    made.minLength = minLength;
    made.complexCharacters = complexCharacters;
    return made;
}

void expectRules(const TeskPasswordRules& actual, int quality, int minLength, int complexCharacters) {
    EXPECT_EQ(actual.quality, quality);
    EXPECT_EQ(actual.minLength, minLength);
    EXPECT_EQ(actual.complexCharacters, complexCharacters);
}

TEST(PasswordDecision, TypeIsTheQualityWithoutItsLowFourBits) {
    EXPECT_EQ(TeskPasswordDecision::typeOf(0), 0);
    EXPECT_EQ(TeskPasswordDecision::typeOf(16), 16);
    EXPECT_EQ(TeskPasswordDecision::typeOf(33), 32);
    EXPECT_EQ(TeskPasswordDecision::typeOf(129), 128);
    EXPECT_EQ(TeskPasswordDecision::typeOf(47), 32);
}

TEST(RequiredPassword, IsNothingWithoutAPasswordRule) {
    auto data = account(1);
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordLength = 8;
    data.minDevicePasswordComplexCharacters = 3;

    expectRules(TeskPasswordDecision::required(data, 4), 0, 0, 0);
}

TEST(RequiredPassword, IsNumericUnlessAlphanumericIsRequired) {
    auto data = passwordAccount(1);
    expectRules(TeskPasswordDecision::required(data, 4), 33, 4, 0);

    data.allowSimplePassword = 0;
    expectRules(TeskPasswordDecision::required(data, 4), 32, 4, 0);
}

TEST(RequiredPassword, IsAlphanumericWithItsComplexCharacters) {
    auto data = passwordAccount(1);
    data.alphanumericDevicePasswordRequired = 1;
    data.minDevicePasswordComplexCharacters = 3;
    expectRules(TeskPasswordDecision::required(data, 4), 129, 4, 3);

    data.allowSimplePassword = 0;
    expectRules(TeskPasswordDecision::required(data, 4), 128, 4, 3);
}

TEST(RequiredPassword, ComplexCharactersNeedAnAlphanumericPassword) {
    auto data = passwordAccount(1);
    data.minDevicePasswordComplexCharacters = 3;

    EXPECT_EQ(TeskPasswordDecision::required(data, 4).complexCharacters, 0);
}

TEST(RequiredPassword, LengthIsTheLargerOfCountryAndPolicy) {
    auto data = passwordAccount(1);
    data.minDevicePasswordLength = 5;

    EXPECT_EQ(TeskPasswordDecision::required(data, 4).minLength, 5);
    EXPECT_EQ(TeskPasswordDecision::required(data, 6).minLength, 6);
}

TEST(PasswordComparison, WeakerTypeIsTooWeak) {
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(0), rules(33), true), Verdict::QualityTooWeak);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(33), rules(128), false), Verdict::QualityTooWeak);
}

TEST(PasswordComparison, StrongerTypeIsAcceptedAndTheLengthStillCounts) {
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(128, 4), rules(33, 4), true), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(128, 3), rules(33, 4), true), Verdict::TooShort);
}

TEST(PasswordComparison, SimplePasswordIsRefusedOnlyWhereTypesAreEqual) {
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(33), rules(32), false), Verdict::SimplePasswordAllowed);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(129), rules(128), false), Verdict::SimplePasswordAllowed);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(129), rules(32), false), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(32), rules(32), false), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(33), rules(33), true), Verdict::Satisfied);
}

TEST(PasswordComparison, SimplePasswordCountsEvenWhereNoPasswordIsRequired) {
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(1), rules(0), false), Verdict::SimplePasswordAllowed);
}

TEST(PasswordComparison, ShorterPasswordIsTooShort) {
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(33, 3), rules(33, 4), true), Verdict::TooShort);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(33, 4), rules(33, 4), true), Verdict::Satisfied);
}

TEST(PasswordComparison, ComplexCharactersCountOnlyWhereBothAreAlphanumeric) {
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(128, 4, 1), rules(128, 4, 2), false),
              Verdict::TooFewComplexCharacters);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(128, 4, 2), rules(128, 4, 2), false), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(256, 4, 1), rules(128, 4, 2), false), Verdict::Satisfied);
}

TEST(PasswordComparison, ReasonsAreFoundInTheirOrder) {
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(33, 3, 0), rules(128, 4, 2), false), Verdict::QualityTooWeak);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(129, 3, 0), rules(128, 4, 2), false),
              Verdict::SimplePasswordAllowed);
    EXPECT_EQ(TeskPasswordDecision::compareRules(rules(128, 3, 0), rules(128, 4, 2), false), Verdict::TooShort);
}

TEST(LockComparison, AnyRequiredPasswordNeedsALock) {
    EXPECT_EQ(TeskPasswordDecision::compareLock(0, 0), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareLock(31, 0), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareLock(32, 0), Verdict::NoLock);
    EXPECT_EQ(TeskPasswordDecision::compareLock(129, 0), Verdict::NoLock);
}

TEST(LockComparison, PinIsEnoughForNumericQualityOnly) {
    EXPECT_EQ(TeskPasswordDecision::compareLock(33, 1), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareLock(63, 1), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareLock(64, 1), Verdict::PinInsteadOfPassword);
    EXPECT_EQ(TeskPasswordDecision::compareLock(128, 1), Verdict::PinInsteadOfPassword);
    EXPECT_EQ(TeskPasswordDecision::compareLock(128, 2), Verdict::Satisfied);
}

} // namespace
