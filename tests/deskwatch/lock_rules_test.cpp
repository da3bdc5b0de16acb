#include "session/lock_rules.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

constexpr LockDemand nothing{0, 0};
constexpr LockDemand sixDigits{32, 6};
constexpr LockDemand eightCharacters{128, 8};

std::string refusal(const LockChoice& choice, const LockDemand& demand) {
    return refusalOf(choice, demand).value_or("taken");
}

TEST(LockRules, NothingIsDemandedOfAnUnmanagedWatch) {
    EXPECT_EQ(refusal({Lock::None, 0}, nothing), "taken");
    EXPECT_EQ(refusal({Lock::Pin, 4}, nothing), "taken");
    EXPECT_EQ(refusal({Lock::Password, 4}, nothing), "taken");
}

TEST(LockRules, NoLockIsShorterThanFour) {
    EXPECT_EQ(refusal({Lock::Pin, 3}, nothing), "3 characters are not enough: at least 4 are demanded");
}

TEST(LockRules, DemandedLockCannotBeRemoved) {
    EXPECT_EQ(refusal({Lock::None, 0}, sixDigits),
              "the lock cannot be removed: a PIN or password of at least 6 characters is demanded");
    EXPECT_EQ(refusal({Lock::None, 0}, eightCharacters),
              "the lock cannot be removed: an alphanumeric password of at least 8 characters is demanded");
}

TEST(LockRules, PinIsRefusedWhereLettersAreDemanded) {
    EXPECT_EQ(refusal({Lock::Pin, 16}, eightCharacters),
              "a PIN is not enough: an alphanumeric password of at least 8 characters is demanded");
    EXPECT_EQ(refusal({Lock::Pin, 16}, {64, 4}),
              "a PIN is not enough: a password of at least 4 characters is demanded");
    EXPECT_EQ(refusal({Lock::Password, 8}, eightCharacters), "taken");
}

TEST(LockRules, EachLockHasTheDemandedLength) {
    EXPECT_EQ(refusal({Lock::Pin, 5}, sixDigits), "5 characters are not enough: at least 6 are demanded");
    EXPECT_EQ(refusal({Lock::Pin, 6}, sixDigits), "taken");
    EXPECT_EQ(refusal({Lock::Password, 5}, sixDigits), "5 characters are not enough: at least 6 are demanded");
}

TEST(LockRules, BitForSimplePasswordsIsNoKind) {
    EXPECT_EQ(refusal({Lock::Pin, 6}, {33, 6}), "taken");
    EXPECT_NE(refusal({Lock::Pin, 6}, {129, 6}), "taken");
    EXPECT_EQ(refusal({Lock::None, 0}, {1, 0}), "taken");
}

TEST(LockRules, ProposedLengthIsTheFewestThatIsTaken) {
    EXPECT_EQ(proposedLength(nothing), 4);
    EXPECT_EQ(proposedLength(sixDigits), 6);
}

} // namespace
} // namespace deskwatch
