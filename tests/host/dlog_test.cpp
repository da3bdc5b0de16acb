#include <dlog.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string>
#include <vector>

#include "c_owners.h"

namespace {

// The level is read once per process, and each test is one.
class Dlog : public testing::Test {
protected:
    static std::string prefix(const char* level) {
        std::string pid = std::to_string(getpid());
        pid.insert(0, pid.size() < 5 ? 5 - pid.size() : 0, ' ');
        return std::string(level) + "/TAG(" + pid + "): ";
    }

    static std::string secondNow() {
        const c::Owner<GDateTime, g_date_time_unref> now(g_date_time_new_now_utc());
        const c::MemoryOwner<char> text(g_date_time_format(now.get(), "%Y-%m-%dT%H:%M:%S"));
        return text.get();
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
    const std::string before = secondNow();
    const std::string line = written(DLOG_WARN, "text");
    EXPECT_LE(before, line.substr(0, before.size()));
    EXPECT_GE(secondNow(), line.substr(0, before.size()));
    EXPECT_THAT(line, testing::ContainsRegex("^[0-9-]{10}T[0-9:]{8}[.][0-9]{3}Z W/TAG"));
    EXPECT_THAT(line, testing::EndsWith("Z " + prefix("W") + "text\n"));
}

TEST_F(Dlog, DebugIsNotShownByDefault) {
    EXPECT_EQ(written(DLOG_DEBUG, "text"), "");
    EXPECT_EQ(result(), 0);
    EXPECT_EQ(written(DLOG_INFO, "text"), prefix("I") + "text\n");
}

TEST_F(Dlog, EmptyLevelIsTheDefaultWithoutAWord) {
    setenv("DLOG_LEVEL", "", 1);
    EXPECT_EQ(written(DLOG_INFO, "text"), prefix("I") + "text\n");
}

TEST_F(Dlog, UnknownLevelIsTheDefaultAndIsReported) {
    setenv("DLOG_LEVEL", "loud", 1);
    EXPECT_EQ(written(DLOG_INFO, "text"), "tesk-host: (no application id): DLOG_LEVEL=loud is not a log level "
                                          "(V D I W E F S); showing I and higher\n" +
                                              prefix("I") + "text\n");
    EXPECT_EQ(written(DLOG_DEBUG, "text"), "");
}

TEST_F(Dlog, FailedWriteIsTheResultAndLeavesTheErrorNumberAlone) {
    close(STDERR_FILENO);
    errno = ENOENT;
    EXPECT_EQ(__dlog_print(LOG_ID_MAIN, DLOG_ERROR, "TAG", "text"), -EBADF);
    EXPECT_EQ(errno, ENOENT);
}

TEST_F(Dlog, LowestLevelShownComesFromTheEnvironment) {
    setenv("DLOG_LEVEL", "e", 1);
    EXPECT_EQ(written(DLOG_WARN, "text"), "");
    EXPECT_EQ(written(DLOG_ERROR, "text"), prefix("E") + "text\n");
}

TEST_F(Dlog, LevelMayBeANumber) {
    setenv("DLOG_LEVEL", "3", 1);
    EXPECT_EQ(written(DLOG_VERBOSE, "text"), "");
    EXPECT_EQ(written(DLOG_DEBUG, "text"), prefix("D") + "text\n");
}

struct Level {
    const char* name;
    int priority;
    const char* letter;
    const char* colour;
};

class DlogLevel : public Dlog, public testing::WithParamInterface<Level> {
protected:
    // What a terminal gets that is the process's stderr.
    static std::string shownAtATerminal(const std::vector<int>& priorities) {
        int terminal = -1;
        int errors = -1;
        EXPECT_EQ(openpty(&terminal, &errors, nullptr, nullptr, nullptr), 0);
        fcntl(errors, F_SETFL, O_NONBLOCK); // nobody reads until all is written
        dup2(errors, STDERR_FILENO);
        close(errors);
        for (const int priority : priorities) {
            __dlog_print(LOG_ID_MAIN, priority, "TAG", "text");
        }
        close(STDERR_FILENO); // reading ends with what was written
        std::array<char, 512> part{};
        std::string shown;
        for (ssize_t size = 0; (size = read(terminal, part.data(), part.size())) > 0;) {
            shown.append(part.data(), static_cast<std::size_t>(size));
        }
        return shown;
    }
};

TEST_P(DlogLevel, IsTheLowestShownByItsNameAndHasALetterAndAColour) {
    const Level& level = GetParam();
    setenv("DLOG_LEVEL", level.name, 1);
    EXPECT_EQ(shownAtATerminal({level.priority - 1, level.priority}),
              level.colour + prefix(level.letter) + "text\x1b[0m\r\n");
}

INSTANTIATE_TEST_SUITE_P(
    All, DlogLevel,
    testing::Values(Level{"Verbose", DLOG_VERBOSE, "V", "\x1b[90m"}, Level{"debug", DLOG_DEBUG, "D", "\x1b[36m"},
                    Level{"info", DLOG_INFO, "I", "\x1b[32m"}, Level{"warn", DLOG_WARN, "W", "\x1b[33m"},
                    Level{"ERROR", DLOG_ERROR, "E", "\x1b[31m"}, Level{"fatal", DLOG_FATAL, "F", "\x1b[1;31m"}));

TEST_F(Dlog, SilentShowsNothing) {
    setenv("DLOG_LEVEL", "silent", 1);
    EXPECT_EQ(written(DLOG_FATAL, "text"), "");
}

TEST_F(Dlog, EveryLineOfATextHasThePrefix) {
    const std::string lines = written(DLOG_INFO, "one\ntwo\n");
    EXPECT_EQ(lines, prefix("I") + "one\n" + prefix("I") + "two\n");
    EXPECT_EQ(result(), static_cast<int>(lines.size()));
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

} // namespace
