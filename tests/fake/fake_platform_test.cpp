#include "fake_platform.h"

#include <app_control.h>
#include <app_preference.h>
#include <dlog.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vconf.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

namespace {

using fake::FakePlatform;
using fake::Journal;

class FakePlatformTest : public ::testing::Test {
protected:
    FakePlatform platform;
};

TEST_F(FakePlatformTest, JournalKeepsCallsAndLogLinesInOrder) {
    vconf_set_int("db/a", 7);
    __dlog_print(LOG_ID_MAIN, DLOG_WARN, "TESK_CONSUMER", "%s: %s(%d) >  low %s", "TeskConsumer.cpp", "appLowMemory",
                 12, "memory");

    EXPECT_EQ(platform.journal.all(), (Journal::Lines{"vconf_set_int db/a 7", "W low memory"}));
}

TEST_F(FakePlatformTest, JournalThatIsNotKeptStaysEmpty) {
    platform.journal.isKept = false;
    vconf_set_int("db/a", 7);
    __dlog_print(LOG_ID_MAIN, DLOG_WARN, "TESK_CONSUMER", "a text");

    EXPECT_EQ(platform.journal.all(), Journal::Lines{});
    EXPECT_EQ(platform.settings.integer("db/a"), 7);
}

TEST_F(FakePlatformTest, LogLineIsTakenApart) {
    const auto line = fake::parseLogLine(DLOG_INFO, "TESK_CONSUMER", "Killer.cpp: operator()(34) >  a: (b) >  c");

    EXPECT_EQ(line.file, "Killer.cpp");
    EXPECT_EQ(line.function, "operator()");
    EXPECT_EQ(line.line, 34);
    EXPECT_EQ(line.text, "a: (b) >  c");
}

TEST_F(FakePlatformTest, LogLineWithOneBlankHasNoFunction) {
    EXPECT_EQ(fake::parseLogLine(DLOG_INFO, "TESK_CONSUMER", "a.cpp: f(1) > text").function, "");
}

TEST_F(FakePlatformTest, OnlyTheNthCallFails) {
    platform.faults.atCall("vconf_set_int", 2, -5);

    EXPECT_EQ(vconf_set_int("db/a", 1), 0);
    EXPECT_EQ(vconf_set_int("db/a", 2), -5);
    EXPECT_EQ(vconf_set_int("db/b", 3), 0);
    EXPECT_EQ(platform.settings.integer("db/a"), 1);
}

TEST_F(FakePlatformTest, CallsAreCountedByTheirFunctions) {
    vconf_set_int("db/a", 1);
    vconf_set_int("db/b", 2);
    mkdir((platform.dataPath + "folder").c_str(), 0755);

    EXPECT_EQ(platform.faults.calls(), (std::map<std::string, int>{{"mkdir", 1}, {"vconf_set_int", 2}}));
}

TEST_F(FakePlatformTest, NoCallFailsOnceTheFaultsEnd) {
    platform.faults.always("vconf_set_int", -5);
    platform.faults.atCall("mkdir", 1, ENOSPC);

    platform.faults.none();

    EXPECT_EQ(vconf_set_int("db/a", 1), 0);
    EXPECT_EQ(mkdir((platform.dataPath + "folder").c_str(), 0755), 0);
}

TEST_F(FakePlatformTest, FailingFileCallsTellWhy) {
    const std::string path = platform.dataPath + "folder";
    for (const auto* function : {"mkdir", "chmod", "unlink"}) {
        platform.faults.always(function, ENOSPC);
    }

    EXPECT_EQ(mkdir(path.c_str(), 0755), -1);
    EXPECT_EQ(errno, ENOSPC);
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(chmod(platform.dataPath.c_str(), 0700), -1);
    EXPECT_EQ(unlink(path.c_str()), -1);
    EXPECT_EQ(errno, ENOSPC);
}

TEST_F(FakePlatformTest, FaultZeroClaimsSuccessAndDoesNothing) {
    platform.faults.always("app_control_create", 0);

    app_control_h handle = nullptr;
    EXPECT_EQ(app_control_create(&handle), 0);
    EXPECT_EQ(handle, nullptr);
}

TEST_F(FakePlatformTest, WatchFiresWhenTheTestDeliversTheChange) {
    platform.settings.setKeyAsDevice("db/a", 0);
    int fired = 0;
    vconf_notify_key_changed(
        "db/a", [](keynode_t*, void* count) { ++*static_cast<int*>(count); }, &fired);

    platform.settings.setKeyAsDevice("db/a", 1);
    EXPECT_EQ(fired, 0);
    platform.settings.deliverChanges();
    EXPECT_EQ(fired, 1);
}

TEST_F(FakePlatformTest, LaunchIsRecordedWithItsExtraData) {
    app_control_h handle = nullptr;
    app_control_create(&handle);
    app_control_set_app_id(handle, "a.b");
    app_control_add_extra_data(handle, "K", "v");
    EXPECT_EQ(app_control_send_launch_request(handle, nullptr, nullptr), 0);

    EXPECT_EQ(platform.launches.sent.at(0).appId, "a.b");
    EXPECT_FALSE(platform.launches.sent.at(0).wantsReply());
    EXPECT_EQ(platform.journal.calls({"app_control_send"}), Journal::Lines{"app_control_send_launch_request a.b K=v"});
    EXPECT_EQ(platform.leaks(), Journal::Lines{"app_control"});
    app_control_destroy(handle);
    EXPECT_EQ(platform.leaks(), Journal::Lines{});
}

TEST_F(FakePlatformTest, TextThatIsNotReleasedIsALeak) {
    platform.settings.setKeyAsDevice("db/a", "value");
    char* text = vconf_get_str("db/a");

    EXPECT_EQ(platform.leaks(), Journal::Lines{"text value"});
    free(text);
    EXPECT_EQ(platform.leaks(), Journal::Lines{});
}

TEST_F(FakePlatformTest, TimerFiresWhenItsTimeHasPassed) {
    int fired = 0;
    const auto count = [](gpointer number) -> gboolean {
        ++*static_cast<int*>(number);
        return G_SOURCE_REMOVE;
    };
    g_timeout_add_seconds(10, count, &fired);

    platform.system.passSeconds(9);
    EXPECT_EQ(fired, 0);
    platform.system.passSeconds(1);
    EXPECT_EQ(fired, 1);
    EXPECT_EQ(platform.system.timers(), 0U);
}

TEST_F(FakePlatformTest, EndedProcessHearsOfNothingAndLeavesTheDeviceAsItWas) {
    int fired = 0;
    vconf_notify_key_changed(
        "db/a", [](keynode_t*, void* count) { ++*static_cast<int*>(count); }, &fired);
    const auto never = [](gpointer) -> gboolean { return G_SOURCE_REMOVE; };
    g_timeout_add_seconds(10, never, nullptr);
    platform.settings.setKeyAsDevice("db/a", 7);
    platform.devicePolicy.registerService();

    platform.endProcess();
    platform.deliverPending();
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(platform.system.timers(), 0U);
    EXPECT_EQ(platform.settings.integer("db/a"), 7);
    EXPECT_EQ(platform.devicePolicy.clients.size(), 1U);
}

TEST_F(FakePlatformTest, SleepIsWrittenDownAndNotSlept) {
    g_usleep(3600000000UL);

    EXPECT_EQ(platform.journal.calls(), Journal::Lines{"g_usleep 3600000000"});
}

TEST_F(FakePlatformTest, AllocationFailsOnDemand) {
    platform.faults.atCall("operator new", 1);

    const std::unique_ptr<int> first(new (std::nothrow) int(1));
    const std::unique_ptr<int> second(new (std::nothrow) int(2));
    EXPECT_EQ(first, nullptr);
    EXPECT_NE(second, nullptr);
}

TEST(FakePlatformLifeTest, DataFolderGoesWithThePlatform) {
    std::string path;
    {
        const FakePlatform platform;
        path = platform.dataPath;
        EXPECT_TRUE(std::filesystem::is_directory(path));
        EXPECT_EQ(path.back(), '/');
    }
    EXPECT_FALSE(std::filesystem::exists(path));
}

} // namespace
