#include "device_state.h"
#include "messages.h"
#include "platform_owners.h"
#include "process_handle.h"
#include "service_process.h"
#include "watch.h"

#include <gtest/gtest.h>
#include <message_port.h>
#include <sys/stat.h>

#include <csignal>

namespace system_test {
namespace {

namespace fs = std::filesystem;

/// What tells whether a file or folder was made anew.
ino_t inodeOf(const fs::path& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_ino;
}

/// Waits until a service that was started by hand is in its main loop.
void waitUntilUp(const Watch& watch) {
    constexpr int enterAndLeave = 2;
    watch.waitForLog("TeskConsumer.cpp: appControl", enterAndLeave);
}

TEST(Start, FirstOneMakesTheFolderTheFileAndTheTable) {
    const Watch watch;
    ASSERT_FALSE(fs::exists(watch.database().parent_path()));

    watch.launchService();

    EXPECT_EQ(fs::status(watch.database().parent_path()).permissions(), static_cast<fs::perms>(0755));
    EXPECT_EQ(storedRows(watch.database()), std::vector<Row>{});
    EXPECT_EQ(watch.log().count("Let's create db!"), 1);
    EXPECT_EQ(enforcingAccount(), 0);
}

TEST(Start, SecondOneMakesNothing) {
    const Watch watch;
    watch.launchService();
    const auto file = inodeOf(watch.database());
    watch.endService();

    watch.launchService();

    EXPECT_EQ(inodeOf(watch.database()), file);
    EXPECT_EQ(watch.log().count("Let's create db!"), 1);
    EXPECT_EQ(watch.log().count("dbPath : " + watch.database().string()), 2);
}

TEST(Start, WithoutAccountsLeavesTheDeviceAlone) {
    const Watch watch;

    watch.launchService();

    EXPECT_EQ(watch.log().count("Strong policy"), 0);
    EXPECT_EQ(key(keys::passwordApplied), std::nullopt);
    EXPECT_EQ(key(keys::encryptionApplied), std::nullopt);
}

TEST(Start, WithAccountsEnforcesThemAgain) {
    const Watch watch;
    watch.launchService();
    watch.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    ASSERT_EQ(watch.companions().launches(ids::popup).size(), 1U);
    watch.endService();
    setKey(keys::passwordApplied, 1);

    watch.launchService();

    EXPECT_EQ(settings(), (Settings{128, 4, 10, 1, 900, 365, 4, 1, 1, 1, 1}));
    EXPECT_EQ(key(keys::passwordApplied), 0);
    EXPECT_EQ(watch.companions().launches(ids::popup).size(), 2U);
    EXPECT_EQ(watch.log().count("Password policy requires stronger password."), 2);
}

TEST(Start, RequestBeforeItFindsNoPort) {
    const Watch watch;

    EXPECT_EQ(sendMessage({{"req", "chk_password_policy"}, {"msg", ""}}), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);

    EXPECT_FALSE(watch.isServiceRunning());
}

TEST(Start, SecondInstanceIsRefused) {
    const Watch watch;
    watch.launchService();
    const auto first = watch.servicePid();

    const ServiceProcess second(watch);

    const auto status = second.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_EQ(watch.log().count("an instance of com.velmor.tesk-agent is running already"), 1);
    EXPECT_EQ(watch.servicePid(), first);
}

TEST(Start, MissingApplicationIdIsAClearError) {
    const Watch watch;
    auto environment = watch.device().appEnvironment(ids::service);
    environment.erase("TESK_APP_ID");

    const ServiceProcess service(watch, environment);

    const auto status = service.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_GE(watch.log().count("TESK_APP_ID is not set"), 1);
}

TEST(Start, MissingBusIsAClearError) {
    const Watch watch;
    auto environment = watch.device().appEnvironment(ids::service);
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (watch.layout().folder() / "nowhere").string();

    const ServiceProcess service(watch, environment);

    const auto status = service.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_GE(watch.log().count("cannot connect to the device's bus"), 1);
}

TEST(Start, DatabaseFolderThatCannotBeMadeDoesNotEndTheService) {
    const Watch watch;
    // a file stands where the folder would be
    fs::create_directories(watch.database().parent_path().parent_path());
    fs::create_symlink("/nowhere/at/all", watch.database().parent_path());

    watch.launchService();

    EXPECT_EQ(watch.log().count("g_mkdir() failed!"), 1);
    EXPECT_EQ(watch.log().count("db initialize fail!"), 1);
    watch.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    EXPECT_TRUE(watch.isServiceRunning());
    EXPECT_EQ(settings().quality, 0) << "nothing could be stored";
}

TEST(End, TerminationClosesThePortAndEndsWithStatusZero) {
    const Watch watch;
    const ServiceProcess service(watch);
    waitUntilUp(watch);

    kill(service.pid(), SIGTERM);

    EXPECT_EQ(service.waitForExit(), 0);
    EXPECT_EQ(watch.log().count("Goodbye World!"), 1);
    EXPECT_EQ(watch.log().count("Failed message port unregister"), 0);
    EXPECT_EQ(sendMessage({{"req", "chk_password_policy"}, {"msg", ""}}), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
}

TEST(End, LostBusEndsTheServiceWithAClearError) {
    const Watch watch;
    const ServiceProcess service(watch);
    waitUntilUp(watch);

    watch.device().off();

    const auto status = service.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_EQ(watch.log().count("the connection to the bus was lost, the application ends"), 1);
}

} // namespace
} // namespace system_test
