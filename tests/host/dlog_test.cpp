#include <dlog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>

namespace {

// The level is read once per process, and each test is one.
class Dlog : public testing::Test {
protected:
    static std::string prefix(const char* level) {
        std::string pid = std::to_string(getpid());
        pid.insert(0, pid.size() < 5 ? 5 - pid.size() : 0, ' ');
        return std::string(level) + "/TAG(" + pid + "): ";
    }

    static std::string written(int priority, const std::string& text) {
        testing::internal::CaptureStderr();
        result() = __dlog_print(LOG_ID_MAIN, priority, "TAG", "%s", text.c_str());
        return testing::internal::GetCapturedStderr();
    }

    static int& result() {
        static int value = 0;
        return value;
    }
};

TEST_F(Dlog, LineHasLevelTagProcessAndText) {
    const std::string line = written(DLOG_WARN, "text");
    EXPECT_EQ(line, prefix("W") + "text\n");
    EXPECT_EQ(result(), static_cast<int>(line.size()));
}

TEST_F(Dlog, LineBeginsWithTheTimeWhereThatIsWanted) {
    setenv("DLOG_FORMAT", "time", 1);
    const std::string line = written(DLOG_WARN, "text");
    EXPECT_THAT(line, testing::ContainsRegex("^[0-9-]{10}T[0-9:]{8}[.][0-9]{3}Z W/TAG"));
    EXPECT_THAT(line, testing::EndsWith("Z " + prefix("W") + "text\n"));
}

TEST_F(Dlog, DebugIsNotShownByDefault) {
    EXPECT_EQ(written(DLOG_DEBUG, "text"), "");
    EXPECT_EQ(written(DLOG_INFO, "text"), prefix("I") + "text\n");
}

TEST_F(Dlog, EmptyLevelIsTheDefaultWithoutAWord) {
    setenv("DLOG_LEVEL", "", 1);
    EXPECT_EQ(written(DLOG_INFO, "text"), prefix("I") + "text\n");
}

TEST_F(Dlog, LowestLevelShownComesFromTheEnvironment) {
    setenv("DLOG_LEVEL", "e", 1);
    EXPECT_EQ(written(DLOG_WARN, "text"), "");
    EXPECT_EQ(written(DLOG_ERROR, "text"), prefix("E") + "text\n");
}

TEST_F(Dlog, LevelMayBeAName) {
    setenv("DLOG_LEVEL", "Verbose", 1);
    EXPECT_EQ(written(DLOG_VERBOSE, "text"), prefix("V") + "text\n");
}

TEST_F(Dlog, LevelMayBeANumber) {
    setenv("DLOG_LEVEL", "3", 1);
    EXPECT_EQ(written(DLOG_VERBOSE, "text"), "");
    EXPECT_EQ(written(DLOG_DEBUG, "text"), prefix("D") + "text\n");
}

TEST_F(Dlog, SilentShowsNothing) {
    setenv("DLOG_LEVEL", "silent", 1);
    EXPECT_EQ(written(DLOG_FATAL, "text"), "");
}

TEST_F(Dlog, EveryLineOfATextHasThePrefix) {
    EXPECT_EQ(written(DLOG_INFO, "one\ntwo\n"), prefix("I") + "one\n" + prefix("I") + "two\n");
}

TEST_F(Dlog, EmptyTextIsALineToo) {
    EXPECT_EQ(written(DLOG_INFO, ""), prefix("I") + "\n");
    EXPECT_GT(result(), 0);
}

TEST_F(Dlog, LongTextIsWhole) {
    const std::string text(100000, 'x');
    EXPECT_EQ(written(DLOG_INFO, text), prefix("I") + text + "\n");
}

TEST_F(Dlog, InvalidArgumentsAreErrors) {
    EXPECT_EQ(__dlog_print(LOG_ID_INVALID, DLOG_ERROR, "TAG", "%s", "text"), -EINVAL);
    EXPECT_EQ(__dlog_print(LOG_ID_MAIN, 99, "TAG", "%s", "text"), -EINVAL);
    EXPECT_EQ(__dlog_print(LOG_ID_MAIN, DLOG_SILENT, "TAG", "%s", "text"), -EINVAL);
}

TEST_F(Dlog, LeavesTheErrorNumberAlone) {
    errno = ENOENT;
    written(DLOG_INFO, "text");
    errno = ENOENT;
    __dlog_print(LOG_ID_MAIN, DLOG_DEBUG, "TAG", "%s", "text");
    EXPECT_EQ(errno, ENOENT);
}

} // namespace
