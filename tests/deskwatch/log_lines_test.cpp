#include "records/log_lines.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

constexpr char logText[] =
    "I/TESK_CONSUMER(    7): one\ndbus-daemon: two\nW/TESK_CONSUMER(    7): three\nE/X(7): four\n";

TEST(LogLines, AllAreShownWithoutALevel) {
    EXPECT_EQ(LogLines(std::nullopt).add(logText), logText);
}

TEST(LogLines, LowerLevelsAndLinesWithoutOneAreLeftOut) {
    EXPECT_EQ(LogLines('W').add(logText), "W/TESK_CONSUMER(    7): three\nE/X(7): four\n");
    EXPECT_EQ(LogLines('F').add(logText), "");
}

TEST(LogLines, LineIsShownWhenItIsComplete) {
    LogLines lines('W');
    EXPECT_EQ(lines.add("W/X(7): th"), "");
    EXPECT_EQ(lines.add("ree"), "");
    EXPECT_EQ(lines.add("\nI/X(7): four\nE/"), "W/X(7): three\n");
    EXPECT_EQ(lines.add("X(7): five\n"), "E/X(7): five\n");
}

} // namespace
} // namespace deskwatch
