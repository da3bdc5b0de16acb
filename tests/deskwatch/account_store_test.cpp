#include "accounts/account_store.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "device/application_ids.h"
#include "process_limit.h"
#include "temporary_folder.h"

namespace deskwatch {
namespace {

MailAccount fullAccount() {
    MailAccount account;
    account.id = 2;
    account.name = "bob@bank.example";
    account.server = {"https://mail.bank.example/eas",
                      "BANK\\bob",
                      "desk0001",
                      QueryForm::Base64,
                      160,
                      "4294967295",
                      {{"a", "1"}},
                      true};
    account.elements = {{"AllowCamera", "0", false, 0}, {"ApprovedApplicationList", "", true, 0}};
    account.message = R"({"msgId":"email-itpolicy-ind"})";
    account.pending = PendingPolicy{"17", 3, true};
    account.acknowledged = 2;
    return account;
}

class TheAccountStore : public testing::Test {
protected:
    const AccountStore& store() const { return store_; }

    std::filesystem::path file(const std::string& name) const {
        return layout_.applicationData(ids::mail) / "accounts" / name;
    }

private:
    TemporaryFolder folder_;
    DeviceLayout layout_{folder_.path()};
    AccountStore store_{layout_};
};

TEST_F(TheAccountStore, AccountIsReadAsItWasWritten) {
    store().write(fullAccount());
    auto other = fullAccount();
    other.id = 10;
    other.pending = PendingPolicy{"18", std::nullopt, false};
    store().write(other);
    EXPECT_EQ(store().ids(), (std::vector<int>{2, 10}));
    EXPECT_EQ(accountJson(store().read(2)), accountJson(fullAccount()));
    EXPECT_EQ(accountJson(store().read(10)), accountJson(other));
    store().remove(2);
    store().remove(2);
    EXPECT_EQ(store().ids(), std::vector<int>{10});
    EXPECT_THROW(store().read(2), std::runtime_error);
}

TEST_F(TheAccountStore, FullDiskKeepsTheOldState) {
    store().write(fullAccount());
    auto changed = fullAccount();
    changed.message.assign(10'000, 'x');
    std::signal(SIGXFSZ, SIG_IGN); // NOLINT(cert-err33-c): the write fails instead
    {
        const ProcessLimit disk(RLIMIT_FSIZE, 4096);
        EXPECT_THROW(store().write(changed), std::runtime_error);
    }
    EXPECT_EQ(accountJson(store().read(2)), accountJson(fullAccount()));
    store().write(changed);
    EXPECT_EQ(store().read(2).message, changed.message);
}

TEST_F(TheAccountStore, OnlyItsOwnerReadsIt) {
    store().write(fullAccount());
    EXPECT_EQ(std::filesystem::status(file("2.json")).permissions(), std::filesystem::perms(0600));
}

TEST_F(TheAccountStore, FolderInThePlaceOfAFileIsAnError) {
    for (const auto* const name : {"2.json", "2.lock"}) {
        std::filesystem::create_directories(file(name) / "inner");
    }
    EXPECT_THROW(store().write(fullAccount()), std::runtime_error);
    EXPECT_THROW(store().remove(2), std::runtime_error);
    EXPECT_THROW(store().lock(2), std::runtime_error);
}

TEST_F(TheAccountStore, SecondHandshakeOfAnAccountIsKeptOut) {
    const auto lock = store().lock(2);
    EXPECT_THROW(store().lock(2), std::runtime_error);
    EXPECT_NO_THROW(store().lock(3));
}

TEST(MailAccount, StateThatIsNoneIsRefused) {
    for (const auto* const text : {"", "{}", "[1]", R"({"id":"2"})", R"({"id":2,"name":1})"}) {
        EXPECT_THROW(readAccountJson(text), std::runtime_error) << text;
    }
}

} // namespace
} // namespace deskwatch
