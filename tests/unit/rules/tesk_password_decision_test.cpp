#include "platform_values.h"
#include "rules/TeskPasswordDecision.h"
#include "unit_test.h"

namespace {

using Verdict = TeskPasswordVerdict;

/// What the device enforces or what is required of it.
TeskPasswordRules rules(int quality, int minLength = 0, int complexCharacters = 0) {
    TeskPasswordRules made;
    made.quality = quality;
    made.minLength = minLength;
    made.complexCharacters = complexCharacters;
    return made;
}

void expectRules(const TeskPasswordRules& actual, const TeskPasswordRules& expected) {
    EXPECT_EQ(actual.quality, expected.quality);
    EXPECT_EQ(actual.minLength, expected.minLength);
    EXPECT_EQ(actual.complexCharacters, expected.complexCharacters);
}

TEST(PasswordDecision, TypeIsTheQualityWithoutItsLowFourBits) {
    for (const auto& [quality, type] : {std::pair(0, 0), {16, 16}, {33, 32}, {129, 128}, {47, 32}}) {
        EXPECT_EQ(TeskPasswordDecision::typeOf(quality), type) << quality;
    }
}

TEST(PasswordDecision, OldStyleQualitiesMigrateAndOthersStay) {
    for (const auto& [quality, migrated] : {std::pair(16, 33), {17, 33}, {32, 32}, {129, 129}, {0, 0}}) {
        EXPECT_EQ(TeskPasswordDecision::migrated(quality), migrated) << quality;
    }
}

TEST(RequiredPassword, IsNumericOrAlphanumericAndAsLongAsPolicyAndCountryWant) {
    auto data = account(1);
    data.minDevicePasswordLength = 5;
    data.minDevicePasswordComplexCharacters = 3;
    expectRules(TeskPasswordDecision::required(data, 6), rules(quality::none, 0, 0));

    data.devicePasswordEnabled = 1;
    expectRules(TeskPasswordDecision::required(data, 4), rules(quality::numericOrSimple, 5, 0));
    expectRules(TeskPasswordDecision::required(data, 6), rules(quality::numericOrSimple, 6, 0));

    data.allowSimplePassword = 0;
    expectRules(TeskPasswordDecision::required(data, 4), rules(quality::numeric, 5, 0));

    data.alphanumericDevicePasswordRequired = 1;
    expectRules(TeskPasswordDecision::required(data, 4), rules(quality::alphanumeric, 5, 3));

    data.allowSimplePassword = 1;
    expectRules(TeskPasswordDecision::required(data, 4), rules(quality::alphanumericOrSimple, 5, 3));

    data.devicePasswordEnabled = 0;
    expectRules(TeskPasswordDecision::required(data, 4), rules(quality::none, 0, 0));
}

/// What the device enforces, what is required of it, and what comes of it.
struct Comparison {
    const char* name;
    TeskPasswordRules current;
    TeskPasswordRules required;
    bool allowsSimple;
    Verdict verdict;
};

class PasswordComparisonTest : public ::testing::TestWithParam<Comparison> {};

TEST_P(PasswordComparisonTest, FindsTheFirstReason) {
    const auto& row = GetParam();

    EXPECT_EQ(TeskPasswordDecision::compareRules(row.current, row.required, row.allowsSimple), row.verdict);
}

constexpr bool simple = true;
constexpr bool notSimple = false;

INSTANTIATE_TEST_SUITE_P(
    , PasswordComparisonTest,
    ::testing::Values(
        Comparison{"NoPassword", rules(0), rules(33), simple, Verdict::QualityTooWeak},
        Comparison{"WeakerTypeBeforeAllElse", rules(33, 3, 0), rules(128, 4, 2), notSimple, Verdict::QualityTooWeak},
        Comparison{"StrongerType", rules(128, 4), rules(33, 4), simple, Verdict::Satisfied},
        Comparison{"StrongerTypeThatIsShort", rules(128, 3), rules(33, 4), simple, Verdict::TooShort},
        Comparison{"EqualRules", rules(33, 4), rules(33, 4), simple, Verdict::Satisfied},
        Comparison{"ShorterPassword", rules(33, 3), rules(33, 4), simple, Verdict::TooShort},
        Comparison{"SimplePin", rules(33), rules(32), notSimple, Verdict::SimplePasswordAllowed},
        Comparison{"SimplePasswordBeforeItsLength", rules(129, 3, 0), rules(128, 4, 2), notSimple,
                   Verdict::SimplePasswordAllowed},
        Comparison{"SimplePasswordOfAStrongerType", rules(129), rules(32), notSimple, Verdict::Satisfied},
        Comparison{"NoSimplePassword", rules(32), rules(32), notSimple, Verdict::Satisfied},
        Comparison{"SimplePasswordWhereNoneIsRequired", rules(1), rules(0), notSimple, Verdict::SimplePasswordAllowed},
        Comparison{"FewComplexCharacters", rules(128, 4, 1), rules(128, 4, 2), notSimple,
                   Verdict::TooFewComplexCharacters},
        Comparison{"LengthBeforeComplexCharacters", rules(128, 3, 0), rules(128, 4, 2), notSimple, Verdict::TooShort},
        Comparison{"EnoughComplexCharacters", rules(128, 4, 2), rules(128, 4, 2), notSimple, Verdict::Satisfied},
        Comparison{"FewComplexCharactersOfAStrongerType", rules(256, 4, 1), rules(128, 4, 2), notSimple,
                   Verdict::Satisfied}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(LockComparison, AnyRequiredPasswordNeedsALock) {
    EXPECT_EQ(TeskPasswordDecision::compareLock(0, lock::none), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareLock(31, lock::none), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareLock(32, lock::none), Verdict::NoLock);
    EXPECT_EQ(TeskPasswordDecision::compareLock(129, lock::none), Verdict::NoLock);
}

TEST(LockComparison, PinIsEnoughForNumericQualityOnly) {
    EXPECT_EQ(TeskPasswordDecision::compareLock(33, lock::pin), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareLock(63, lock::pin), Verdict::Satisfied);
    EXPECT_EQ(TeskPasswordDecision::compareLock(64, lock::pin), Verdict::PinInsteadOfPassword);
    EXPECT_EQ(TeskPasswordDecision::compareLock(128, lock::password), Verdict::Satisfied);
}

} // namespace
