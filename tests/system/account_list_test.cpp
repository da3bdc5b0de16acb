#include <gtest/gtest.h>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

/// Both messages bring the mail application's list of accounts.
struct ListMessage {
    const char* name;
    std::string (*text)(const std::vector<PolicyAccount>& accounts);
};

void PrintTo(const ListMessage& message, std::ostream* output) {
    *output << message.name;
}

class AccountList : public testing::TestWithParam<ListMessage> {
protected:
    AccountList() { device_.launchService(); }

    void send(const std::vector<PolicyAccount>& accounts) const {
        device_.send("req_update_policy", GetParam().text(accounts));
    }

    const TestDevice device_;
};

TEST_P(AccountList, AccountsWithAPolicyAreStoredWithBothNamesAndEnforced) {
    send({alice(defaultPolicy), bob(hardenedPolicy), carol(limitsWithoutPasswordPolicy)});

    const auto rows = storedRows(device_.database());
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows.at(1).at(22), "bob@fabrikam.example");
    EXPECT_EQ(rows.at(1).at(23), "The account of bob@fabrikam.example");
    EXPECT_EQ(settings(), (Settings{128, 4, 8, 3, 900, 365, 4, 1, 1, 1, 1}));
    EXPECT_EQ(device_.companions().launches(ids::popup).at(0).extraData.at("ACCOUNT_NAME"), "bob@fabrikam.example");
    EXPECT_EQ(device_.log().count("Password policy requires stronger password."), 1);
}

TEST_P(AccountList, AccountWithoutAPolicyIsNotStored) {
    send({alice(""), bob(pinPolicy)});

    EXPECT_EQ(storedAccounts(device_.database()), std::vector<std::string>{"2"});
}

TEST_P(AccountList, StoredAccountsThatItLeavesOutStay) {
    device_.send("req_update_policy", policyUpdate({alice(pinPolicy), bob(pinPolicy)}));

    send({bob(strictestPolicy)});

    EXPECT_EQ(storedAccounts(device_.database()), (std::vector<std::string>{"1", "2"}));
    EXPECT_EQ(settings().minLength, 16);
}

TEST_P(AccountList, StoredAccountThatItListsWithoutAPolicyKeepsItsOwn) {
    device_.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));

    send({alice("")});

    EXPECT_EQ(settings().minLength, 16);
}

TEST_P(AccountList, EmptyListEnforcesWhatIsStored) {
    device_.send("req_update_policy", policyUpdate({alice(pinPolicy)}));

    send({});

    EXPECT_EQ(device_.companions().launches(ids::popup).size(), 2U);
    EXPECT_EQ(storedAccounts(device_.database()), std::vector<std::string>{"1"});
}

std::string nameOf(const testing::TestParamInfo<ListMessage>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(From, AccountList,
                         testing::Values(ListMessage{"AccountInfo", accountInfo},
                                         ListMessage{"InitResponse", initResponse}),
                         nameOf);

} // namespace
} // namespace system_test
