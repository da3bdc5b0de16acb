#include "records/log_lines.h"

#include <gtest/gtest.h>

#include "records/log_line.h"

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

TEST(LogLines, TimeBeforeTheLevelIsKept) {
    const std::string timed = "2026-11-22T09:41:20.123Z W/X(7): one\n";
    EXPECT_EQ(LogLines('W').add(timed), timed);
    EXPECT_EQ(LogLines('E').add(timed), "");
}

TEST(LogLines, RecordAfterThePrefixOfTheBusIsARecord) {
    const std::string record = "2026-11-22T20:34:25.811Z W/X(24770): read at 09:00Z I/O failed\n";
    const auto line = "dbus-daemon[24741]: " + record;
    EXPECT_EQ(LogLines('W').add(line), record);
    EXPECT_EQ(LogLines('E').add(line), "");
    EXPECT_EQ(LogLines(std::nullopt).add(line), line);
    EXPECT_NE(logLine(line).time, std::nullopt);
    EXPECT_EQ(logLine(line).text, record.substr(record.find("W/")));
    EXPECT_EQ(levelOf("dbus-daemon[24741]: it is 09:00Z W/o a time"), std::nullopt);
}

TEST(LogLines, LogWithoutALineBreakDoesNotStayInMemory) {
    LogLines lines(std::nullopt);
    std::size_t shown = 0;
    for (int i = 0; i < 40; ++i) {
        shown += lines.add(std::string(65'536, '\0')).size();
    }
    EXPECT_GT(shown, 40U * 65'536 / 2);
}

TEST(LogLine, TimeIsTakenOffOnlyWhereThereIsOne) {
    const auto timed = logLine("2023-11-14T22:13:20.007Z I/X(7): one");
    EXPECT_EQ(timed.time, std::chrono::system_clock::time_point(std::chrono::milliseconds(1'700'000'000'007)));
    EXPECT_EQ(timed.text, "I/X(7): one");
    const auto untimed = logLine("2023-11-14X22:13:20.007Z I/X(7): one");
    EXPECT_EQ(untimed.time, std::nullopt);
    EXPECT_EQ(untimed.level, std::nullopt);
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
