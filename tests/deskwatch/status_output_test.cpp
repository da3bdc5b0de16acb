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

DeviceStatus fullStatus() {
    DeviceStatus status = freshStatus();
    status.isServiceRunning = true;
    status.accounts = {{{"account_id", 1}, {"account_name", std::string("alice")}},
                       {{"account_id", 2}, {"account_name", std::string("bob")}}};
    status.settings[0] = 128;
    status.keys = {{"db/a", std::string("text")}, {"db/b", {}}};
    status.enforcingAccount.value = 2;
    status.screens = {{"com.example.popup", "com.example.agent", true, {{"OPERATION", "X"}}}};
    status.faults = {{"vconf_get_int", -1, 2}};
    return status;
}

TEST(StatusOutput, TablesShowEachAccountInAColumn) {
    EXPECT_EQ(statusTables(fullStatus()), "Watch /tmp/watch, the service runs\n"
                                          "\nStored accounts\n"
                                          "  account_id    1      2\n"
                                          "  account_name  alice  bob\n"
                                          "\nSettings of the device policy manager\n"
                                          "  quality                           128 alphanumeric\n"
                                          "  minimum_length                    -\n"
                                          "  maximum_failed_attempts_for_wipe  -\n"
                                          "  min_complex_chars                 -\n"
                                          "  max_inactivity_time_device_lock   -\n"
                                          "  expires                           -\n"
                                          "  history                           -\n"
                                          "  wifi_state                        -\n"
                                          "  messaging_state                   -\n"
                                          "  popimap_email_state               -\n"
                                          "  internal_storage_encryption       -\n"
                                          "\nKeys\n"
                                          "  db/a       text\n"
                                          "  db/b       -\n"
                                          "  enforcing  2\n"
                                          "\nLaunch requests\n"
                                          "  com.example.popup, launched by com.example.agent, which waits for the "
                                          "answer\n"
                                          "    OPERATION  X\n"
                                          "\nMessages to the mail application\n  none\n"
                                          "\nFunctions of the platform that fail\n"
                                          "  vconf_get_int  -1  call 2\n");
}

TEST(StatusOutput, TablesOfAFreshWatchSayThatThereIsNothing) {
    const auto text = statusTables(freshStatus());
    EXPECT_NE(text.find("the service does not run"), std::string::npos) << text;
    EXPECT_NE(text.find("Stored accounts\n  none\n"), std::string::npos) << text;
    EXPECT_NE(text.find("Launch requests\n  none\n"), std::string::npos) << text;
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

TEST(StatusOutput, JsonHoldsTheSame) {
    const auto json = nlohmann::json::parse(statusJson(fullStatus()));
    EXPECT_EQ(json, nlohmann::json::parse(R"({
        "watch": "/tmp/watch", "booted": true, "serviceRunning": true, "idleExit": null, "mergedPolicy": null,
        "accounts": [{"account_id": 1, "account_name": "alice"}, {"account_id": 2, "account_name": "bob"}],
        "settings": {"quality": 128, "minimum_length": null, "maximum_failed_attempts_for_wipe": null,
            "min_complex_chars": null, "max_inactivity_time_device_lock": null, "expires": null, "history": null,
            "wifi_state": null, "messaging_state": null, "popimap_email_state": null,
            "internal_storage_encryption": null},
        "keys": {"db/a": "text", "db/b": null}, "enforcingAccount": 2, "wipes": 0,
        "lockScreen": {"wrongAttempts": 0, "passwordAge": 0, "locked": false},
        "launches": [{"application": "com.example.popup", "caller": "com.example.agent", "waiting": true,
                      "extraData": {"OPERATION": "X"}}],
        "faults": [{"function": "vconf_get_int", "code": -1, "nth": 2}], "messages": []})"));
}

TEST(StatusOutput, JsonOfTextThatIsNotUtf8IsStillJson) {
    auto status = freshStatus();
    status.keys = {{"db/a", std::string("\xff")}};
    EXPECT_EQ(nlohmann::json::parse(statusJson(status))["keys"]["db/a"], "\uFFFD");
}

} // namespace
} // namespace deskwatch
