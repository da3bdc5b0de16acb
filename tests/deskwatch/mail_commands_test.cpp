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

TEST_F(MailCommands, WipeEmptiesTheInternalStorage) {
    boot();
    run({"mail", "policy", sample("exchange-default.json")});
    const auto note = device().layout().internalStorage() / "note";
    std::ofstream(note) << "note";

    run({"mail", "wipe"});

    EXPECT_FALSE(std::filesystem::exists(note));
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
