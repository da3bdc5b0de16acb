#include <sqlite3.h>

#include <algorithm>
#include <csignal>

#include "commands_fixture.h"
#include "device/application_ids.h"
#include "device/process_handle.h"
#include "records/policy_database.h"
#include "running_program.h"

namespace deskwatch {
namespace {

class MailCommands : public Commands {};

TEST_F(MailCommands, AccountListIsStored) {
    boot();
    run({"mail", "accounts", sample("account-info.json")});
    EXPECT_FALSE(status()["accounts"].empty());
}

TEST_F(MailCommands, AnswerToTheStartIsStored) {
    boot();
    run({"mail", "init", sample("init-response.json")});
    EXPECT_EQ(status()["accounts"][0]["account_name"], "bob@fabrikam.example");
}

TEST_F(MailCommands, MessageOfAnotherKindIsRefusedAndNothingIsSent) {
    boot();

    const auto outcome = deskwatchProgram({"mail", "accounts", sample("init-response.json")});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "deskwatch: mail accounts: " + sample("init-response.json") +
                                  ": a message of the kind email-init-res; this command takes email-account-info\n");
    EXPECT_FALSE(status()["serviceRunning"]);
}

TEST_F(MailCommands, RawFilesAreOfferedWhereTheyCanBeSent) {
    const auto file = write("broken.json", "{").string();
    const auto policy = deskwatchProgram({"mail", "policy", file});
    const auto accounts = deskwatchProgram({"mail", "accounts", file});
    EXPECT_NE(policy.errors.find("--raw"), std::string::npos) << policy.errors;
    EXPECT_NE(accounts.errors.find("not valid JSON"), std::string::npos) << accounts.errors;
    EXPECT_EQ(accounts.errors.find("--raw"), std::string::npos) << accounts.errors;
}

TEST_F(MailCommands, MessageThatIsTooLongForThePortIsRefusedAndNothingIsSent) {
    boot();
    const auto longest = write("longest.json", "\"" + std::string(12171, 'x') + "\"").string();
    const auto tooLong = write("long.json", "\"" + std::string(12172, 'x') + "\"").string();

    const auto refused = deskwatchProgram({"mail", "policy", longest, tooLong});
    const bool wasSent = status()["serviceRunning"];

    EXPECT_EQ(refused.status, 1);
    const auto reason = tooLong + ": the message has 12174 bytes; the port takes at most 12173\n";
    EXPECT_NE(refused.errors.find(reason), std::string::npos) << refused.errors;
    EXPECT_NE(deskwatchProgram({"whatif", tooLong}).errors.find("whatif: " + reason), std::string::npos);
    EXPECT_NE(deskwatchProgram({"lint", tooLong}).output.find(":1: the message has 12174 bytes"), std::string::npos);
    EXPECT_FALSE(wasSent);
    EXPECT_NE(deskwatchProgram({"mail", "policy", longest}).errors.find("passed over: it is not a JSON object"),
              std::string::npos);
}

TEST_F(MailCommands, FileWithoutAKindIsRefused) {
    boot();
    for (const char* text : {"[]", "{}", R"({"msgId": 4})"}) {
        const auto outcome = deskwatchProgram({"mail", "init", write("message.json", text).string()});
        EXPECT_EQ(outcome.status, 1) << text;
        EXPECT_NE(outcome.errors.find("it has no \"msgId\""), std::string::npos) << outcome.errors;
    }
}

TEST_F(MailCommands, WipeEmptiesTheInternalStorage) {
    boot();
    run({"mail", "policy", sample("exchange-default.json")});
    const auto note = device().layout().internalStorage() / "note";
    std::ofstream(note) << "note";

    run({"mail", "wipe"});

    EXPECT_FALSE(std::filesystem::exists(note));
}

TEST_F(MailCommands, WhatBecameOfEachRequestIsTold) {
    boot();
    EXPECT_EQ(run({"mail", "policy", sample("hardened.json"), sample("three-accounts.json")}),
              sample("hardened.json") + ": account 2 (bob@bank.example): stored\n" + sample("three-accounts.json") +
                  ": account 1 (alice@contoso.example): stored\n" + sample("three-accounts.json") +
                  ": account 2 (bob@bank.example): unchanged\n" + sample("three-accounts.json") +
                  ": account 3 (carol@university.example): stored\n");
    EXPECT_EQ(run({"mail", "delete", "2"}), "account 2: deleted\n");
    EXPECT_EQ(run({"mail", "wipe"}), "the internal storage: wiped\n");
}

TEST_F(MailCommands, WhatTheWatchDidNotDoEndsWithThreeAndTheReason) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    run({"fault", "dpm_security_wipe_data", "-13"});
    run({"fault", "dpm_password_set_history", "-1"});
    const auto folder = write("broken.json", "{}").string();
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"mail", "wipe"}, "refused: the platform does not wipe the internal storage: [-13]"},
        {{"mail", "policy", sample("exchange-default.json")},
         "refused by the platform: [EAS] Failed setPasswordHistory"},
        {{"mail", "delete", "7"}, "account 7: passed over: no such account is stored"},
        {{"mail", "delete", "abc"}, "\"abc\" is not an account's number"},
        {{"mail", "send", "req_unknown"}, "the service does not know this request"},
        {{"mail", "check-encryption"}, "a lock comes first"},
        {{"mail", "policy", folder}, "its \"msgId\" is none that the service knows"},
        {{"bus", "usingFile"}, "usingFile: the service cannot open its policy file"},
    };
    for (const auto& [arguments, reason] : cases) {
        const auto outcome = deskwatchProgram(arguments);
        EXPECT_EQ(outcome.status, 3) << reason;
        EXPECT_NE(outcome.errors.find(reason), std::string::npos) << outcome.errors;
    }
}

TEST_F(MailCommands, NumberThatTheServiceWouldTakeForAnotherIsNotSent) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    for (const char* number : {"2x", "4294967298", "2 "}) {
        EXPECT_EQ(deskwatchProgram({"mail", "delete", number}).status, 2) << number;
    }
    EXPECT_EQ(status()["accounts"].size(), 1U);
}

/// Keeps the service from writing its store while it lives; reading goes on.
class LockedStore {
public:
    explicit LockedStore(const Device& device) {
        EXPECT_EQ(sqlite3_open(policyDatabase(device.layout()).c_str(), &store_), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(store_, "begin immediate", nullptr, nullptr, nullptr), SQLITE_OK);
    }
    ~LockedStore() { sqlite3_close(store_); }
    LockedStore(const LockedStore&) = delete;
    LockedStore& operator=(const LockedStore&) = delete;

private:
    sqlite3* store_ = nullptr;
};

TEST_F(MailCommands, UpdateThatCannotBeStoredIsRefused) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    const LockedStore lock(device());

    const auto outcome = deskwatchProgram({"mail", "policy", sample("three-accounts.json")});

    EXPECT_EQ(outcome.status, 3);
    EXPECT_NE(
        outcome.errors.find("account 1 (alice@contoso.example): refused: the store cannot be written: database is "
                            "locked\n"),
        std::string::npos)
        << outcome.errors;
}

TEST_F(MailCommands, RequestThatAServiceLeftUnhandledIsSentAgainToTheNext) {
    boot();
    run({"mail", "policy", sample("exchange-default.json")});
    RunningProgram log({"log", "--follow"});
    auto lock = std::make_unique<LockedStore>(device());
    const auto nothingToStore = write("none.json", R"({"msgId": "email-itpolicy-ind", "param": [{"accountId": 7}]})");
    RunningProgram mail({"mail", "policy", nothingToStore.string(), sample("hardened.json")});
    EXPECT_NE(mail.nextLine().find("account 7: unchanged"), std::string::npos) << "before the next is handled";
    log.awaitLine([](const std::string& line) { return line.find("busy handler called") != std::string::npos; });

    const auto service = ProcessHandle::open(BusClient(device().busAddress()).daemon().processOf(ids::service).value());
    service->signal(SIGKILL);
    lock.reset();

    EXPECT_NE(mail.nextLine().find("account 2 (bob@bank.example): stored"), std::string::npos);
    EXPECT_NE(mail.nextLine().find("sent again"), std::string::npos);
    EXPECT_EQ(mail.waitForEnd(), 0);
}

TEST_F(MailCommands, CheckOfThePasswordOpensThePopup) {
    boot();
    run({"mail", "check-password"});
    EXPECT_EQ(status()["launches"][0]["application"], ids::popup);
}

TEST_F(MailCommands, CheckOfTheEncryptionOpensTheEncryptionPopupAgain) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    run({"lock", "password"});
    const auto popups = [] {
        const auto launches = status()["launches"];
        return std::count_if(launches.begin(), launches.end(),
                             [](const Json& launch) { return launch["application"] == ids::encryptionPopup; });
    };
    ASSERT_EQ(popups(), 1) << "the new lock has opened it";

    run({"mail", "check-encryption"});

    EXPECT_EQ(popups(), 2);
}

} // namespace
} // namespace deskwatch
