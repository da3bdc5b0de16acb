#include "device/patience.h"

#include <gtest/gtest.h>

#include <vector>

namespace deskwatch {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// Tries in vain; returns what is said, and adds how long each attempt may take.
std::string tryInVain(milliseconds patience, seconds untilNotice, std::vector<milliseconds>& attempts) {
    testing::internal::CaptureStderr();
    const bool isDone = tryPatiently(patience, untilNotice, "the service", [&attempts](milliseconds atMost) {
        attempts.push_back(atMost);
        return false;
    });
    EXPECT_FALSE(isDone);
    return testing::internal::GetCapturedStderr();
}

TEST(Patience, SaysOnceWhatItWaitsForAndGoesOn) {
    std::vector<milliseconds> attempts;

    EXPECT_EQ(tryInVain(seconds(10), seconds(3), attempts), "deskwatch: waiting for the service for 3 seconds\n");
    EXPECT_EQ(attempts, (std::vector<milliseconds>{seconds(3), seconds(7)}));
    EXPECT_EQ(tryInVain(seconds(10), seconds(1), attempts), "deskwatch: waiting for the service for a second\n");
}

TEST(Patience, ThatEndsBeforeTheNoticeSaysNothing) {
    std::vector<milliseconds> attempts;

    EXPECT_EQ(tryInVain(seconds(3), seconds(3), attempts), "");
    EXPECT_EQ(tryInVain(seconds(1), seconds(3), attempts), "");
    EXPECT_EQ(attempts, (std::vector<milliseconds>{seconds(3), seconds(1)}));
}

TEST(Patience, IsNotUsedUpByWhatSucceeds) {
    testing::internal::CaptureStderr();
    int attempts = 0;

    EXPECT_TRUE(
        tryPatiently(seconds(10), seconds(1), "the service", [&attempts](milliseconds) { return ++attempts == 1; }));
    EXPECT_EQ(attempts, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace deskwatch
