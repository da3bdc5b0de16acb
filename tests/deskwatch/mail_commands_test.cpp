#include <algorithm>

#include "commands_fixture.h"
#include "device/application_ids.h"

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
    EXPECT_NE(refused.errors.find(": the message has 12174 bytes; the port takes at most 12173\n"), std::string::npos)
        << refused.errors;
    EXPECT_FALSE(wasSent);
    EXPECT_EQ(deskwatchProgram({"mail", "policy", longest}).status, 0);
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
