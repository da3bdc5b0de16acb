#include <gtest/gtest.h>
#include <message_port.h>
#include <sys/stat.h>

#include <csignal>

#include "device/process_handle.h"
#include "device_state.h"
#include "messages.h"
#include "service_process.h"
#include "test_device.h"

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
void waitUntilUp(const TestDevice& device) {
    constexpr int enterAndLeave = 2;
    device.waitForLog("TeskConsumer.cpp: appControl", enterAndLeave);
}

TEST(Start, FirstOneMakesTheFolderTheFileAndTheTable) {
    const TestDevice device;
    ASSERT_FALSE(fs::exists(device.database().parent_path()));

    device.launchService();

    EXPECT_EQ(fs::status(device.database().parent_path()).permissions(), static_cast<fs::perms>(0755));
    EXPECT_EQ(storedRows(device.database()), std::vector<Row>{});
    EXPECT_EQ(device.log().count("Let's create db!"), 1);
    EXPECT_EQ(enforcingAccount(), 0);
}

TEST(Start, SecondOneMakesNothing) {
    const TestDevice device;
    device.launchService();
    const auto file = inodeOf(device.database());
    device.endService();

    device.launchService();

    EXPECT_EQ(inodeOf(device.database()), file);
    EXPECT_EQ(device.log().count("Let's create db!"), 1);
    EXPECT_EQ(device.log().count("dbPath : " + device.database().string()), 2);
}

TEST(Start, WithoutAccountsLeavesTheDeviceAlone) {
    const TestDevice device;

    device.launchService();

    EXPECT_EQ(device.log().count("Strong policy"), 0);
    EXPECT_EQ(key(keys::passwordApplied), std::nullopt);
    EXPECT_EQ(key(keys::encryptionApplied), std::nullopt);
}

TEST(Start, WithAccountsEnforcesThemAgain) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    ASSERT_EQ(device.companions().launches(ids::popup).size(), 1U);
    device.endService();
    setKey(keys::passwordApplied, 1);

    device.launchService();

    EXPECT_EQ(settings(), (Settings{128, 4, 10, 1, 900, 365, 4, 1, 1, 1, 1}));
    EXPECT_EQ(key(keys::passwordApplied), 0);
    EXPECT_EQ(device.companions().launches(ids::popup).size(), 2U);
    EXPECT_EQ(device.log().count("Password policy requires stronger password."), 2);
}

TEST(Start, RequestBeforeItFindsNoPort) {
    const TestDevice device;

    EXPECT_EQ(sendMessage({{"req", "chk_password_policy"}, {"msg", ""}}), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);

    EXPECT_FALSE(device.isServiceRunning());
}

TEST(Start, SecondInstanceIsRefused) {
    const TestDevice device;
    device.launchService();
    const auto first = device.servicePid();

    const ServiceProcess second(device);

    const auto status = second.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_EQ(device.log().count("an instance of com.velmor.tesk-agent is running already"), 1);
    EXPECT_EQ(device.servicePid(), first);
}

TEST(Start, MissingApplicationIdIsAClearError) {
    const TestDevice device;
    auto environment = device.booted().appEnvironment(ids::service);
    environment.erase("TESK_APP_ID");

    const ServiceProcess service(device, environment);

    const auto status = service.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_GE(device.log().count("TESK_APP_ID is not set"), 1);
}

TEST(Start, MissingBusIsAClearError) {
    const TestDevice device;
    auto environment = device.booted().appEnvironment(ids::service);
    environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (device.layout().folder() / "nowhere").string();

    const ServiceProcess service(device, environment);

    const auto status = service.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_GE(device.log().count("cannot connect to the device's bus"), 1);
}

TEST(Start, DatabaseFolderThatCannotBeMadeDoesNotEndTheService) {
    const TestDevice device;
    // a file stands where the folder would be
    fs::create_directories(device.database().parent_path().parent_path());
    fs::create_symlink("/nowhere/at/all", device.database().parent_path());

    device.launchService();

    EXPECT_EQ(device.log().count("g_mkdir() failed!"), 1);
    EXPECT_EQ(device.log().count("db initialize fail!"), 1);
    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    EXPECT_TRUE(device.isServiceRunning());
    EXPECT_EQ(settings().quality, 0) << "nothing could be stored";
}

TEST(End, TerminationClosesThePortAndEndsWithStatusZero) {
    const TestDevice device;
    const ServiceProcess service(device);
    waitUntilUp(device);

    kill(service.pid(), SIGTERM);

    EXPECT_EQ(service.waitForExit(), 0);
    EXPECT_EQ(device.log().count("Goodbye World!"), 1);
    EXPECT_EQ(device.log().count("Failed message port unregister"), 0);
    EXPECT_EQ(sendMessage({{"req", "chk_password_policy"}, {"msg", ""}}), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
}

TEST(End, LostBusEndsTheServiceWithAClearError) {
    const TestDevice device;
    const ServiceProcess service(device);
    waitUntilUp(device);

    device.booted().off();

    const auto status = service.waitForExit();
    ASSERT_TRUE(status);
    EXPECT_NE(*status, 0);
    EXPECT_EQ(device.log().count("the connection to the bus was lost, the application ends"), 1);
}

} // namespace
} // namespace system_test
