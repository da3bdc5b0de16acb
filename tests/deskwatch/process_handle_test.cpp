#include "device/process_handle.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <fstream>
#include <iterator>

namespace deskwatch {
namespace {

ProcessIdentity ownIdentity() {
    std::ifstream file("/proc/self/stat");
    return parseProcessStat(std::string(std::istreambuf_iterator<char>(file), {})).value();
}

TEST(ProcessHandle, StatOfAProgramWithBlanksAndParenthesesInItsNameIsRead) {
    const auto identity =
        parseProcessStat("4711 (a) (b c) S 1 4711 4711 0 -1 4194560 1 0 0 0 0 0 0 0 20 0 1 0 987654 1 2 3");
    ASSERT_TRUE(identity);
    EXPECT_EQ(identity->pid, 4711);
    EXPECT_EQ(identity->startTime, 987654U);
}

TEST(ProcessHandle, TextThatIsNoStatGivesNoIdentity) {
    EXPECT_FALSE(parseProcessStat(""));
    EXPECT_FALSE(parseProcessStat("4711 (short) S 1 2"));
    EXPECT_FALSE(parseProcessStat("x (y) S 1 1 1 0 -1 0 1 0 0 0 0 0 0 0 20 0 1 0 5 1"));
}

TEST(ProcessHandle, RunningProcessIsFoundByItsIdentity) {
    EXPECT_TRUE(ProcessHandle::open(ownIdentity()));
}

TEST(ProcessHandle, AnotherProcessWithTheSameNumberIsNotTakenForIt) {
    auto earlier = ownIdentity();
    --earlier.startTime;
    EXPECT_FALSE(ProcessHandle::open(earlier));
}

TEST(ProcessHandle, EndOfTheProcessIsWaitedFor) {
    const pid_t child = fork();
    if (child == 0) {
        pause();
        _exit(0);
    }
    const auto handle = ProcessHandle::open(child);
    ASSERT_TRUE(handle);
    EXPECT_FALSE(handle->waitForEnd(std::chrono::milliseconds::zero()));

    handle->signal(SIGTERM);

    EXPECT_TRUE(handle->waitForEnd(std::chrono::seconds(20)));
    EXPECT_FALSE(ProcessHandle::open(child)) << "one that nobody has collected yet does not run";
    EXPECT_EQ(waitpid(child, nullptr, 0), child);
}

} // namespace
} // namespace deskwatch
