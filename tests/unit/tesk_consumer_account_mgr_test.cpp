#include <sqlite3.h>

#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerDbMgr.h"
#include "unit_test.h"

namespace {

class AccountMgrTest : public UnitTest {
protected:
    int add(const TeskPolicyData& data) { return manager.addAccount(std::make_shared<TeskPolicyData>(data)); }

    Lines registrations() const { return journal.calls({"dpm_admin"}); }

    TeskConsumerAccountMgr& manager = *TeskConsumerAccountMgr::getInstance();
};

constexpr char registration[] = "dpm_admin_register_client com.velmor.tesk-agent 5001";
constexpr char deregistration[] = "dpm_admin_deregister_client com.velmor.tesk-agent 5001";

TEST_F(AccountMgrTest, FirstAccountRegistersBeforeItIsStoredAndEnforcesNothing) {
    EXPECT_EQ(add(passwordAccount(3)), 0);

    EXPECT_EQ(fieldsOf(stored(3)), fieldsOf(passwordAccount(3)));
    const auto calls = journal.calls({"dpm_", "sqlite3_prepare_v2 select * ", "sqlite3_prepare_v2 insert"});
    ASSERT_GE(calls.size(), 4U);
    EXPECT_EQ(calls[0], "dpm_manager_create");
    EXPECT_EQ(calls[1], "sqlite3_prepare_v2 select * from eas_policy_tbl where account_id=?;");
    EXPECT_EQ(calls[2], registration);
    EXPECT_EQ(calls[3].substr(0, 25), "sqlite3_prepare_v2 insert");
    EXPECT_EQ(journal.deviceSettings(), Lines{});
    EXPECT_EQ(journal.logsOf("addAccount"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(AccountMgrTest, LaterAccountsAndUpdatesNeedNoRegistration) {
    store({account(1)});

    EXPECT_EQ(add(account(2)), 0);
    EXPECT_EQ(add(passwordAccount(1)), 0);

    EXPECT_EQ(storedAccounts(), 2);
    EXPECT_EQ(stored(1).devicePasswordEnabled, 1);
    EXPECT_EQ(registrations(), Lines{});
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(AccountMgrTest, RefusedRegistrationDoesNotStopTheAddition) {
    platform.faults.always("dpm_admin_register_client", DPM_ERROR_PERMISSION_DENIED);

    EXPECT_EQ(add(account(3)), 0);
    EXPECT_EQ(storedAccounts(), 1);
    EXPECT_EQ(journal.warnings(), Lines{"W Failed to register policy admin : -13"});
}

TEST_F(AccountMgrTest, FailedWritesAreLoggedAndReturned) {
    constexpr int insertAfterSearchAndCount = 3;
    constexpr int updateAfterSearch = 2;
    TeskConsumerDbMgr::getInstance();
    platform.faults.atCall("sqlite3_step", insertAfterSearchAndCount, SQLITE_FULL);
    EXPECT_EQ(add(account(3)), TESK_DB_FAILURE);
    EXPECT_EQ(journal.warnings().back(), "W _db_insert_policy_data failed: -1001");

    store({account(3)});
    platform.faults.atCall("sqlite3_step", updateAfterSearch, SQLITE_FULL);
    EXPECT_EQ(add(account(3)), TESK_DB_FAILURE);
    EXPECT_EQ(journal.warnings().back(), "W _db_update_rule_data failed: -1001");
}

TEST_F(AccountMgrTest, UnopenedDatabaseTakesTheUpdatePath) {
    platform.dataPath += "missing/";

    EXPECT_EQ(add(account(3)), TESK_DB_FAILURE);
    EXPECT_EQ(registrations(), Lines{});
    EXPECT_EQ(journal.warnings().back(), "W _db_update_rule_data failed: -1001");
}

TEST_F(AccountMgrTest, DeletionDeletesThenAppliesThenDeregisters) {
    store({passwordAccount(1)});

    EXPECT_EQ(manager.delAccount(1), 0);

    EXPECT_EQ(storedAccounts(), 0);
    EXPECT_EQ(journal.calls({"sqlite3_prepare_v2 delete", "dpm_password_set_quality", "dpm_admin"}),
              (Lines{"sqlite3_prepare_v2 delete from eas_policy_tbl where account_id=?;", "dpm_password_set_quality 0",
                     deregistration}));
    EXPECT_EQ(journal.logsOf("delAccount"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(AccountMgrTest, DeletionOfOneOfTwoAppliesThePolicyOfTheOther) {
    auto strict = passwordAccount(2);
    strict.alphanumericDevicePasswordRequired = 1;
    store({passwordAccount(1), strict});

    EXPECT_EQ(manager.delAccount(2), 0);

    EXPECT_EQ(platform.devicePolicy.setting("quality"), 33);
    EXPECT_EQ(registrations(), Lines{});
    EXPECT_EQ(journal.warnings().back(), "W applyPolicy failed: -6000");
}

TEST_F(AccountMgrTest, DeletionOfNoAccountStillAppliesAndDeregisters) {
    platform.devicePolicy.registerService();

    EXPECT_EQ(manager.delAccount(0), 0);

    EXPECT_EQ(journal.warnings(),
              (Lines{"E accountId is invalid", "W deletePolicyByAccountId failed: -2", "W query result: 101"}));
    EXPECT_EQ(journal.deviceSettings().size(), 11U);
    EXPECT_EQ(registrations(), Lines{deregistration});
}

} // namespace
