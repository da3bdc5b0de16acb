#include "session/lock_screen.h"

#include <gtest/gtest.h>

#include <vector>

namespace deskwatch {
namespace {

const LockLimits noLimits{};
const LockLimits fourAttempts{4, 0, 0};

TEST(LockScreen, LimitsAreThoseOfTheDevicePolicyManager) {
    const auto limits = lockLimits({128, 6, 4, 3, 900, 365, 5, 1, 1, 1, 0});
    EXPECT_EQ(limits.wrongAttempts, 4);
    EXPECT_EQ(limits.inactivity, 900);
    EXPECT_EQ(limits.passwordAge, 365);
    EXPECT_EQ(lockLimits({}).wrongAttempts, 0) << "a value that cannot be read";
}

struct Attempts {
    int before;
    int count;
    LockLimits limits;
    int after;
    bool isWipe;
    const char* text;
};

TEST(LockScreen, WrongPasswordsAreCountedUntilTheWipe) {
    const std::vector<Attempts> all{
        {0, 1, fourAttempts, 1, false, "wrong password, attempt 1 of 4"},
        {1, 2, fourAttempts, 3, false, "wrong password, attempt 3 of 4: after the next one the watch wipes itself"},
        {3, 1, fourAttempts, 4, true, "wrong password, attempt 4 of 4: the watch wipes itself"},
        {0, 2'147'483'647, fourAttempts, 4, true, "wrong password, attempt 4 of 4: the watch wipes itself"},
        {9, 5, fourAttempts, 10, true, "wrong password, attempt 10 of 4: the watch wipes itself"}, // a limit set since
        {0, 50, noLimits, 50, false, "wrong password, attempt 50: no setting limits the attempts"},
        {5, 2'147'483'647, noLimits, 1'000'000'000, false,
         "wrong password, attempt 1000000000: no setting limits the attempts"}};
    for (const auto& attempts : all) {
        const auto screen = afterWrongPasswords({attempts.before, 7, false}, attempts.count, attempts.limits);
        EXPECT_EQ(screen, (LockScreen{attempts.after, 7, true}));
        EXPECT_EQ(hasToWipe(screen, attempts.limits), attempts.isWipe);
        EXPECT_EQ(wrongAttemptText(screen, attempts.limits), attempts.text);
    }
}

TEST(LockScreen, DiffersInEachField) {
    const LockScreen one{1, 7, true};
    for (const LockScreen& other : {LockScreen{2, 7, true}, LockScreen{1, 8, true}, LockScreen{1, 7, false}}) {
        EXPECT_FALSE(one == other);
    }
}

TEST(LockScreen, PasswordExpiresAtTheAgeThatIsSet) {
    const LockLimits thirtyDays{0, 0, 30};
    EXPECT_EQ(passwordAgeText({0, 29, false}, thirtyDays), "the password is 29 days old; it expires after 30 days");
    EXPECT_FALSE(isExpired({0, 29, false}, thirtyDays));
    EXPECT_TRUE(isExpired({0, 30, false}, thirtyDays));
    EXPECT_EQ(passwordAgeText({0, 1, false}, noLimits), "the password is 1 day old; no setting lets it expire");
    EXPECT_FALSE(isExpired({0, 30, false}, noLimits));
}

} // namespace
} // namespace deskwatch
