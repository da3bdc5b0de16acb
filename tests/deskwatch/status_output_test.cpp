#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "status/device_status.h"

namespace deskwatch {
namespace {

DeviceStatus freshStatus() {
    DeviceStatus status;
    status.folder = "/tmp/watch";
    status.enforcingAccount = {"enforcing", {}};
    return status;
}

TEST(StatusOutput, UsedLockScreenAndWipeAreTold) {
    auto status = freshStatus();
    EXPECT_EQ(statusTables(status).find("Lock screen"), std::string::npos);
    status.settings[5] = 30; // expires
    status.lockScreen = {2, 30, true};
    status.wipes = 1;
    const auto text = statusTables(status);
    EXPECT_NE(
        text.find("\nLock screen\n"
                  "  the watch is locked\n"
                  "  wrong password, attempt 2: no setting limits the attempts\n"
                  "  the password is 30 days old: it has expired after 30 days, and the wearer has to set another\n"
                  "\nLaunch requests\n"),
        std::string::npos)
        << text;
    EXPECT_NE(text.find("\nIts internal storage was wiped since the boot."), std::string::npos) << text;
}

TEST(StatusOutput, EndOfAnIdleServiceIsToldAsExactlyAsItIsKnown) {
    auto status = freshStatus();
    status.isServiceRunning = true;
    EXPECT_EQ(statusTables(status).find("Watch /tmp/watch, the service runs\n"), 0U);
    status.idleExit = IdleExit{std::chrono::seconds(7), true};
    EXPECT_EQ(statusTables(status).find("Watch /tmp/watch, the service runs, idle exit in 7 s\n"), 0U);
    status.idleExit->isExact = false;
    EXPECT_EQ(statusTables(status).find("Watch /tmp/watch, the service runs, idle exit within 7 s\n"), 0U);
    status.isBooted = false;
    EXPECT_EQ(statusTables(status).find(
                  "Watch /tmp/watch, switched off, but the service still runs; this is what it keeps\n"),
              0U);
}

TEST(StatusOutput, JsonOfTextThatIsNotUtf8IsStillJson) {
    auto status = freshStatus();
    status.keys = {{"db/a", std::string("\xff")}};
    EXPECT_EQ(nlohmann::json::parse(statusJson(status))["keys"]["db/a"], "\uFFFD");
}

} // namespace
} // namespace deskwatch
