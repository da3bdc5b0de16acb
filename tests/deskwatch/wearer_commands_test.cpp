#include <algorithm>
#include <csignal>

#include "commands_fixture.h"
#include "device/application_ids.h"
#include "device/process_handle.h"
#include "running_program.h"

namespace deskwatch {
namespace {

constexpr int refused = 3;

class WearerCommands : public Commands {
protected:
    /// How often an application was launched.
    static long launchesOf(const Json& watch, const std::string& id) {
        const auto& launches = watch["launches"];
        return std::count_if(launches.begin(), launches.end(),
                             [&](const Json& launch) { return launch["application"] == id; });
    }

    /// Whether the popup still waits for an answer.
    static bool isPopupOpen(const Json& watch) {
        const auto& launches = watch["launches"];
        return std::any_of(launches.begin(), launches.end(), [](const Json& launch) {
            return launch["application"] == ids::popup && launch["waiting"] == true;
        });
    }
};

TEST_F(WearerCommands, PopupsOkOpensTheLockSettings) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    ASSERT_TRUE(isPopupOpen(status()));

    run({"popup", "ok"});

    const auto watch = status();
    EXPECT_FALSE(isPopupOpen(watch));
    EXPECT_EQ(launchesOf(watch, ids::lockSettings), 1);
}

TEST_F(WearerCommands, PopupsSyncOffReachesTheMailApplication) {
    boot();
    run({"mail", "policy", sample("hardened.json")});

    run({"popup", "sync-off"});

    EXPECT_EQ(ask(ids::mail, "Messages"),
              "([('com.velmor.tesk-agent', [(b'req', b'req_disable_password_eas_accounts'), (b'msg', b'')])],)");
    const auto watch = status();
    EXPECT_EQ(launchesOf(watch, ids::lockSettings), 0);
    EXPECT_EQ(watch["messages"], Json::parse(R"([{"sender": "com.velmor.tesk-agent",
        "entries": {"req": "req_disable_password_eas_accounts", "msg": ""}}])"));
    EXPECT_NE(run({"status"}).find("\nMessages to the mail application\n  from com.velmor.tesk-agent\n"),
              std::string::npos);
}

TEST_F(WearerCommands, WhoHearsOfTheEncryptionFindsTheStorageEncrypted) {
    boot();
    RunningProgram timeline({"timeline", "--follow", "--json", "--new"});
    run({"bus", "ping"});
    timeline.awaitLine([](const std::string& line) { return line.find("diagnostic method") != std::string::npos; });
    run({"encrypt"});
    const auto isKey = [](const std::string& line) { return Json::parse(line)["kind"] == "key"; };
    EXPECT_NE(timeline.awaitLine(isKey).find("crypto"), std::string::npos);
    EXPECT_NE(timeline.awaitLine(isKey).find("device_encryption_applied"), std::string::npos);
}

TEST_F(WearerCommands, DismissedPopupIsClosedAndNothingFollows) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    settle(ids::mail);

    run({"popup", "dismiss"});

    const auto watch = status();
    EXPECT_FALSE(isPopupOpen(watch));
    EXPECT_EQ(launchesOf(watch, ids::lockSettings), 0);
    EXPECT_EQ(ask(ids::mail, "Messages"), "([],)");
}

TEST_F(WearerCommands, PopupThatIsNotOpenTakesNoAnswer) {
    boot();
    auto outcome = deskwatchProgram({"popup", "ok"});
    EXPECT_EQ(outcome.status, refused);
    EXPECT_EQ(outcome.errors, "deskwatch: popup ok: no popup is open; deskwatch status shows which screens are\n");

    run({"mail", "policy", sample("hardened.json")});
    run({"popup", "dismiss"});
    outcome = deskwatchProgram({"popup", "dismiss"});

    EXPECT_EQ(outcome.status, refused);
    EXPECT_EQ(outcome.errors, "deskwatch: popup dismiss: nobody waits for an answer from the popup\n");
}

TEST_F(WearerCommands, AnswerReachesTheServiceThatRunsNowAndNoneThatHasEnded) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    const auto service = ProcessHandle::open(BusClient(device().busAddress()).daemon().processOf(ids::service).value());
    service->signal(SIGKILL);
    ASSERT_TRUE(service->waitForEnd(timeout));
    EXPECT_EQ(deskwatchProgram({"popup", "ok"}).status, refused) << "the service that asked has ended";
    run({"bus", "ping"}); // the service starts, and asks anew

    run({"popup", "ok"});

    EXPECT_EQ(launchesOf(status(), ids::lockSettings), 1);
}

TEST_F(WearerCommands, DemandedLockIsSetAndTheServiceHearsOfIt) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    ASSERT_EQ(status()["keys"]["db/eas/password_policy_applied"], 0);

    EXPECT_EQ(run({"lock", "password"}), "the screen is locked with a password of 4 characters\n");

    const auto watch = status();
    EXPECT_EQ(watch["keys"]["db/setting/lock_type"], 2);
    EXPECT_EQ(watch["keys"]["db/eas/password_policy_applied"], 1);
    EXPECT_EQ(launchesOf(watch, ids::encryptionPopup), 1) << "encryption is what the policy demands next";
}

TEST_F(WearerCommands, LockOfAFreshWatchIsTheWearersOwn) {
    boot();
    EXPECT_EQ(run({"lock", "pin", "--length", "8"}), "the screen is locked with a PIN of 8 characters\n");
    EXPECT_EQ(status()["keys"]["db/setting/lock_type"], 1);
    EXPECT_EQ(run({"lock", "none"}), "the screen has no lock\n");
    const auto watch = status();
    EXPECT_EQ(watch["keys"]["db/setting/lock_type"], 0);
    EXPECT_FALSE(watch["serviceRunning"]) << "it need not run for this";
}

TEST_F(WearerCommands, WatchWipesItselfAfterTheLastWrongPassword) {
    boot();
    EXPECT_EQ(deskwatchProgram({"lock", "--wrong", "1"}).errors,
              "deskwatch: lock: the watch has no lock; set one with: deskwatch lock pin\n");
    run({"mail", "policy", sample("hardened.json")}); // 10 attempts
    EXPECT_EQ(deskwatchProgram({"lock", "--wrong", "1"}).errors,
              "deskwatch: lock: the watch has no lock; set one with: deskwatch lock password\n");
    run({"lock", "password"});
    const auto kept = device().layout().internalStorage() / "note";
    std::ofstream(kept) << "of the wearer";
    EXPECT_EQ(run({"lock", "--wrong", "9"}),
              "wrong password, attempt 9 of 10: after the next one the watch wipes itself\n");
    run({"off"});
    boot();
    EXPECT_EQ(status()["lockScreen"], Json::parse(R"({"wrongAttempts": 9, "passwordAge": 0, "locked": true})"));
    ASSERT_TRUE(std::filesystem::exists(kept));

    EXPECT_EQ(run({"lock", "--wrong", "5"}), "wrong password, attempt 10 of 10: the watch wipes itself\n");

    EXPECT_FALSE(std::filesystem::exists(kept));
    EXPECT_EQ(status()["wipes"], 1);
    EXPECT_EQ(status()["lockScreen"]["wrongAttempts"], 0);
}

TEST_F(WearerCommands, RefusedWipeIsTold) {
    boot({"--lock", "pin"});
    run({"mail", "policy", sample("hardened.json")});
    std::filesystem::remove(device().layout().internalStorage());
    std::filesystem::create_symlink("/nowhere", device().layout().internalStorage());
    const auto outcome = deskwatchProgram({"lock", "--wrong", "10"});
    EXPECT_EQ(outcome.status, refused);
    EXPECT_NE(outcome.errors.find("attempt 10 of 10: the watch wipes itself, but the platform refuses it with -1\n"),
              std::string::npos)
        << outcome.errors;
    EXPECT_EQ(status()["lockScreen"]["wrongAttempts"], 10);
}

TEST_F(WearerCommands, WatchThatIsLeftAloneLocksItself) {
    boot();
    EXPECT_EQ(run({"lock", "--idle", "9000"}), "the watch stays unlocked: it has no lock\n");
    run({"lock", "pin"});
    EXPECT_EQ(run({"lock", "--idle", "9000"}), "the watch stays unlocked: no setting locks it\n");
    run({"mail", "policy", sample("hardened.json")}); // 900 seconds
    EXPECT_EQ(run({"lock", "--idle", "899"}), "the watch stays unlocked; it locks itself after 900 s without use\n");
    EXPECT_EQ(run({"lock", "--idle", "900"}), "the watch is locked\n");
    EXPECT_EQ(run({"lock", "--right"}), "the watch is unlocked\n");
    EXPECT_EQ(status()["lockScreen"]["locked"], false);
}

TEST_F(WearerCommands, ExpiredPasswordOpensNothingUntilThereIsAnother) {
    boot();
    run({"mail", "policy", sample("hardened.json")}); // 365 days
    run({"lock", "password"});
    run({"lock", "--wrong", "1"});
    const std::string expired =
        "the password is 365 days old: it has expired after 365 days, and the wearer has to set another";
    EXPECT_EQ(run({"lock", "--age", "365"}), expired + "\n");
    const auto found = deskwatchProgram({"check"}).output;
    EXPECT_EQ(found.find(expired + "\n"), 0U) << found;
    const auto outcome = deskwatchProgram({"lock", "--right"});
    EXPECT_EQ(outcome.status, refused);
    EXPECT_EQ(outcome.errors, "deskwatch: lock: " + expired + ": deskwatch lock password\n");

    run({"lock", "password"});

    EXPECT_EQ(run({"lock", "--right"}), "the watch is unlocked\n");
    EXPECT_EQ(status()["lockScreen"], Json::parse(R"({"wrongAttempts": 0, "passwordAge": 0, "locked": false})"));
}

TEST_F(WearerCommands, EncryptionIsCompleteAtOnce) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    ASSERT_EQ(status()["keys"]["db/eas/device_encryption_applied"], 0);

    EXPECT_EQ(run({"encrypt"}), "the internal storage is encrypted\n");

    const auto keys = status()["keys"];
    EXPECT_EQ(keys["db/ode/crypto_state"], "encrypted");
    EXPECT_EQ(keys["db/eas/device_encryption_applied"], 1);
    EXPECT_EQ(run({"encrypt"}), "the internal storage is encrypted already\n");
}

TEST_F(WearerCommands, TutorialKeepsThePopupClosedUntilItIsDone) {
    boot();
    run({"tutorial", "start"});
    run({"mail", "policy", sample("hardened.json")});
    EXPECT_EQ(launchesOf(status(), ids::popup), 0);

    run({"tutorial", "done"});
    run({"mail", "policy", sample("hardened.json")});

    EXPECT_EQ(launchesOf(status(), ids::popup), 1);
}

TEST_F(WearerCommands, WatchThatIsOffIsNamed) {
    const auto folder = device().layout().folder().string();
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"lock", "pin"}, {"encrypt"}, {"tutorial", "done"}, {"popup", "ok"}}) {
        auto arguments = command;
        arguments.insert(arguments.begin(), {"--device", folder});
        const auto outcome = deskwatchProgram(arguments);
        EXPECT_EQ(outcome.status, 1) << command.front();
        EXPECT_NE(outcome.errors.find(folder + " is not booted"), std::string::npos) << outcome.errors;
    }
}

} // namespace
} // namespace deskwatch
