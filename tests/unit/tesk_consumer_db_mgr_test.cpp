#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <limits>

#include "TeskConsumerDbMgr.h"
#include "other_program.h"
#include "rules/TeskPolicyTable.h"
#include "unit_test.h"

namespace {

class DbMgrTest : public UnitTest {
protected:
    std::string dbPath() const { return platform.dataPath + "dbspace/.tesk.db"; }

    static TeskPolicyData everyFieldDifferent(int accountId) {
        TeskPolicyData data;
        int value = accountId;
        for (const auto& number : TeskPolicyTable::numbers) {
            data.*number.field = value++;
        }
        data.accountName = "zoë@contoso.example";
        data.displayName = "Zoë";
        return data;
    }

    static void expectEveryOperationFails(TeskConsumerDbMgr& db) {
        TeskPolicyData data;
        TeskPolicyDataList list;
        int count = 7;
        EXPECT_EQ(db.checkPolicyByAccountId(1), -1001);
        EXPECT_EQ(db.insertPolicy(account(1)), -1001);
        EXPECT_EQ(db.updatePolicy(account(1)), -1001);
        EXPECT_EQ(db.deletePolicyByAccountId(1), -1001);
        EXPECT_EQ(db.getPolicyDataByAccountId(1, data), -1001);
        EXPECT_EQ(db.getPolicyDataList(list), -1001);
        EXPECT_EQ(db.getAllEasAccountCount(&count), -1001);
        EXPECT_EQ(count, 7);
    }

    static Lines filesIn(const std::string& folder) {
        Lines names;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            names.push_back(entry.path().filename());
        }
        return names;
    }

    bool logged(const std::string& beginning) const {
        const auto lines = journal.logs();
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& line) { return line.compare(0, beginning.size(), beginning) == 0; });
    }
};

TEST_F(DbMgrTest, FirstStartMakesFolderFileAndTable) {
    const TeskConsumerDbMgr db;

    EXPECT_EQ(messages(),
              (Lines{"I dbPath : " + dbPath(), "I dbDir : " + platform.dataPath + "dbspace", "I Let's create db!"}));
    EXPECT_EQ(journal.logsOf("__openDb").front(), "I Enter");
    EXPECT_EQ(journal.logsOf("__openDb").back(), "I Leave");
    struct stat folder {};
    ASSERT_EQ(stat((platform.dataPath + "dbspace").c_str(), &folder), 0);
    EXPECT_EQ(folder.st_mode & 0777U, 0755U);
    EXPECT_EQ(journal.calls({"sqlite3_prepare"}), Lines{"sqlite3_prepare_v2 " + TeskPolicyTable::createSql()});
}

TEST_F(DbMgrTest, TableIsStoredWithTheTextThatCreatesIt) {
    const TeskConsumerDbMgr db;

    auto text = TeskPolicyTable::createSql();
    text.pop_back();
    EXPECT_EQ(OtherProgram(dbPath()).firstRow("select sql from sqlite_master where name='eas_policy_tbl'"),
              Lines{text});
}

TEST_F(DbMgrTest, SecondStartOpensTheFileAndCreatesNothing) {
    { const TeskConsumerDbMgr first; }
    journal.clear();

    const TeskConsumerDbMgr second;

    EXPECT_EQ(messages(), Lines{"I dbPath : " + dbPath()});
    EXPECT_EQ(journal.calls({"sqlite3_prepare"}), Lines{});
}

TEST_F(DbMgrTest, ExistingFolderIsUsed) {
    std::filesystem::create_directory(platform.dataPath + "dbspace");

    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
}

TEST_F(DbMgrTest, ExistingFileWithoutTableIsNotGivenOne) {
    std::filesystem::create_directory(platform.dataPath + "dbspace");
    OtherProgram(dbPath()).run("create table other (a)");
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), -1001);
    EXPECT_EQ(journal.warnings(), (Lines{"E sqlite3_prepare_v2 failed: no such table: eas_policy_tbl",
                                         "E db failure: no such table: eas_policy_tbl"}));
}

TEST_F(DbMgrTest, FolderThatCannotBeMadeFailsEveryOperation) {
    platform.dataPath += "missing/";
    TeskConsumerDbMgr db;

    EXPECT_EQ(journal.warnings(), (Lines{"E g_mkdir() failed!", "W db initialize fail!"}));
    EXPECT_EQ(journal.calls({"sqlite3_open"}), Lines{});
    expectEveryOperationFails(db);
}

TEST_F(DbMgrTest, FileThatCannotBeOpenedFailsEveryOperation) {
    std::filesystem::create_directories(dbPath());
    TeskConsumerDbMgr db;

    EXPECT_EQ(journal.warnings(), (Lines{"E sqlite3_open failed: [14]", "W db initialize fail!"}));
    EXPECT_EQ(journal.calls({"sqlite3_close"}), Lines{"sqlite3_close"}) << "what a failed opening hands out";
    expectEveryOperationFails(db);
}

TEST_F(DbMgrTest, MissingBusyHandlerClosesTheDatabase) {
    platform.faults.always("sqlite3_busy_handler", 21);
    TeskConsumerDbMgr db;

    EXPECT_EQ(journal.warnings(), (Lines{"E sqlite3_busy_handler failed: [21]", "W db initialize fail!"}));
    EXPECT_EQ(journal.calls({"sqlite3_close"}), Lines{"sqlite3_close"});
    EXPECT_FALSE(logged("I Let's create db!"));
    expectEveryOperationFails(db);
}

TEST_F(DbMgrTest, OpeningIsTracedFromTheConstructorOn) {
    const TeskConsumerDbMgr db;

    const auto lines = journal.logs();
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + 3), (Lines{"I ", "I ", "I Enter"}));
    EXPECT_EQ(journal.logsOf("__init"), Lines{"I "});
}

TEST_F(DbMgrTest, OnlyAMissingBusyHandlerLeavesTheFailedOpeningTraced) {
    platform.faults.always("sqlite3_open", 14);
    { const TeskConsumerDbMgr db; }
    EXPECT_FALSE(logged("I Leave"));

    platform.faults.never("sqlite3_open");
    platform.faults.always("sqlite3_busy_handler", 21);
    const TeskConsumerDbMgr db;
    EXPECT_TRUE(logged("I Leave"));
}

TEST_F(DbMgrTest, BusyHandlerIsThereBeforeTheTableIsMade) {
    const TeskConsumerDbMgr db;

    const auto calls = journal.calls({"sqlite3_"});
    ASSERT_GE(calls.size(), 3U);
    EXPECT_EQ(Lines(calls.begin(), calls.begin() + 3),
              (Lines{"sqlite3_open", "sqlite3_busy_handler", "sqlite3_prepare_v2 " + TeskPolicyTable::createSql()}));
}

TEST_F(DbMgrTest, MissingBusyHandlerOfTheNamedFileClosesIt) {
    platform.faults.atCall("sqlite3_busy_handler", 2, 21);
    {
        TeskConsumerDbMgr db;
        EXPECT_EQ(journal.warnings(), (Lines{"E sqlite3_busy_handler failed: [21]", "W db initialize fail!"}));
        expectEveryOperationFails(db);
    }
    EXPECT_EQ(journal.calls({"sqlite3_close"}).size(), 2U) << "the new file and the named one, once each";
}

TEST_F(DbMgrTest, MissingDataPathFailsEveryOperation) {
    platform.faults.always("app_get_data_path");
    TeskConsumerDbMgr db;

    EXPECT_EQ(journal.warnings(), (Lines{"E app_get_data_path failed", "W db initialize fail!"}));
    expectEveryOperationFails(db);
}

TEST_F(DbMgrTest, FileThatCannotBeNamedFailsEveryOperation) {
    platform.faults.atCall("rename", 1, EACCES);
    TeskConsumerDbMgr db;

    EXPECT_EQ(journal.warnings(),
              (Lines{"E rename failed: [" + std::to_string(EACCES) + "]", "W db initialize fail!"}));
    EXPECT_FALSE(std::filesystem::exists(dbPath()));
    expectEveryOperationFails(db);
}

TEST_F(DbMgrTest, TableThatCannotBePreparedDoesNotFailTheOpening) {
    platform.faults.atCall("sqlite3_prepare_v2", 1, SQLITE_ERROR);
    const TeskConsumerDbMgr db;

    EXPECT_TRUE(logged("E query prepare fail: [" + TeskPolicyTable::createSql() + "] - "));
    EXPECT_FALSE(logged("W db initialize fail!"));
    EXPECT_FALSE(std::filesystem::exists(dbPath())) << "a file without a table would never be given one";
}

TEST_F(DbMgrTest, TableThatCannotBeCreatedDoesNotFailTheOpening) {
    platform.faults.atCall("sqlite3_step", 1, SQLITE_FULL);
    const TeskConsumerDbMgr db;

    EXPECT_TRUE(logged("W db create fail: [" + TeskPolicyTable::createSql() + "] - "));
    EXPECT_FALSE(logged("W db initialize fail!"));
}

TEST_F(DbMgrTest, FileGetsItsNameOnlyWithItsTable) {
    platform.faults.atCall("sqlite3_step", 1, SQLITE_FULL);
    { const TeskConsumerDbMgr withoutTable; }

    EXPECT_FALSE(std::filesystem::exists(dbPath()));
    TeskConsumerDbMgr next;
    EXPECT_EQ(next.insertPolicy(account(1)), 0);
}

TEST_F(DbMgrTest, WhatAKilledStartLeftIsCleared) {
    std::filesystem::create_directory(platform.dataPath + "dbspace");
    std::ofstream(dbPath() + ".new") << "half a database";
    std::ofstream(dbPath() + ".new-journal") << "half a journal";

    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_EQ(filesIn(platform.dataPath + "dbspace"), Lines{".tesk.db"});
}

TEST_F(DbMgrTest, LinkInThePlaceOfTheNewFileIsNotFollowed) {
    std::filesystem::create_directory(platform.dataPath + "dbspace");
    const auto other = platform.dataPath + "other";
    std::ofstream(other) << "of somebody else";
    std::filesystem::create_symlink(other, dbPath() + ".new");

    const TeskConsumerDbMgr db;

    EXPECT_TRUE(std::filesystem::is_regular_file(std::filesystem::symlink_status(dbPath())));
    std::string text;
    std::getline(std::ifstream(other), text);
    EXPECT_EQ(text, "of somebody else");
}

TEST_F(DbMgrTest, NoStatisticsOfMemoryAreKept) {
    TeskConsumerDbMgr db;
    EXPECT_EQ(db.insertPolicy(account(1)), 0);

    EXPECT_EQ(sqlite3_memory_used(), 0);
}

TEST_F(DbMgrTest, FileIsForTheServiceAlone) {
    const TeskConsumerDbMgr db;

    struct stat file {};
    ASSERT_EQ(stat(dbPath().c_str(), &file), 0);
    EXPECT_EQ(file.st_mode & 0777U, 0600U);
}

TEST_F(DbMgrTest, DestructorClosesTheDatabase) {
    {
        const TeskConsumerDbMgr db;
        journal.clear();
    }

    EXPECT_EQ(journal.calls({"sqlite3_close"}), Lines{"sqlite3_close"});
    EXPECT_EQ(journal.logsOf("~TeskConsumerDbMgr"), Lines{"I "});
}

TEST_F(DbMgrTest, DestructorOfAnUnopenedDatabaseClosesNothing) {
    platform.faults.always("app_get_data_path");
    { const TeskConsumerDbMgr db; }

    EXPECT_EQ(journal.calls({"sqlite3_close"}), Lines{});
}

TEST_F(DbMgrTest, FailedCreationYieldsNoInstanceAndIsTriedAgain) {
    platform.faults.atCall("operator new", 1);

    EXPECT_EQ(TeskConsumerDbMgr::getInstance(), nullptr);
    auto* instance = TeskConsumerDbMgr::getInstance();
    EXPECT_NE(instance, nullptr);
    EXPECT_EQ(TeskConsumerDbMgr::getInstance(), instance);
}

TEST_F(DbMgrTest, InsertedRecordIsReadBackFieldByField) {
    TeskConsumerDbMgr db;
    const auto written = everyFieldDifferent(100);
    ASSERT_EQ(db.insertPolicy(written), 0);

    TeskPolicyData read;
    EXPECT_EQ(db.getPolicyDataByAccountId(100, read), 0);
    EXPECT_EQ(fieldsOf(read), fieldsOf(written));
}

TEST_F(DbMgrTest, ColumnsHoldTheFieldsInOrder) {
    TeskConsumerDbMgr db;
    ASSERT_EQ(db.insertPolicy(everyFieldDifferent(100)), 0);

    auto expected = fieldsOf(everyFieldDifferent(100));
    expected.insert(expected.end(), 6, "NULL");
    EXPECT_EQ(OtherProgram(dbPath()).firstRow("select * from eas_policy_tbl"), expected);
}

TEST_F(DbMgrTest, ExtremeNumbersAndOddTextsSurvive) {
    TeskConsumerDbMgr db;
    auto written = account(std::numeric_limits<int>::max());
    written.minDevicePasswordLength = std::numeric_limits<int>::min();
    written.accountName = "'; drop table eas_policy_tbl; --";
    written.displayName = "";
    ASSERT_EQ(db.insertPolicy(written), 0);

    TeskPolicyData read;
    EXPECT_EQ(db.getPolicyDataByAccountId(written.accountId, read), 0);
    EXPECT_EQ(fieldsOf(read), fieldsOf(written));
}

TEST_F(DbMgrTest, UpdateOverwritesEveryColumnOfItsRowOnly) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    db.insertPolicy(account(100));

    EXPECT_EQ(db.updatePolicy(everyFieldDifferent(100)), 0);

    TeskPolicyData changed;
    TeskPolicyData other;
    EXPECT_EQ(db.getPolicyDataByAccountId(100, changed), 0);
    EXPECT_EQ(db.getPolicyDataByAccountId(1, other), 0);
    EXPECT_EQ(fieldsOf(changed), fieldsOf(everyFieldDifferent(100)));
    EXPECT_EQ(fieldsOf(other), fieldsOf(account(1)));
}

TEST_F(DbMgrTest, UpdateOfAnAbsentAccountSucceedsAndChangesNothing) {
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.updatePolicy(account(5)), 0);
    EXPECT_EQ(db.checkPolicyByAccountId(5), -1002);
}

TEST_F(DbMgrTest, SecondInsertOfAnAccountFails) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(5));
    journal.clear();

    EXPECT_EQ(db.insertPolicy(account(5)), -1001);
    EXPECT_EQ(journal.warnings().front(), "E db failure: UNIQUE constraint failed: eas_policy_tbl.account_id");
}

TEST_F(DbMgrTest, DeletedAccountIsGone) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(5));

    EXPECT_EQ(db.deletePolicyByAccountId(5), 0);
    EXPECT_EQ(db.checkPolicyByAccountId(5), -1002);
}

TEST_F(DbMgrTest, DeleteOfAnAbsentAccountSucceeds) {
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.deletePolicyByAccountId(5), 0);
}

TEST_F(DbMgrTest, InvalidAccountsAreRefusedBeforeAnySql) {
    TeskConsumerDbMgr db;
    TeskPolicyData untouched = everyFieldDifferent(100);
    journal.clear();

    EXPECT_EQ(db.checkPolicyByAccountId(0), -2);
    EXPECT_EQ(db.deletePolicyByAccountId(-5), -2);
    EXPECT_EQ(db.getPolicyDataByAccountId(0, untouched), -2);
    EXPECT_EQ(journal.calls({"sqlite3_"}), Lines{});
    EXPECT_EQ(journal.warnings(), Lines(3, "E accountId is invalid"));
    EXPECT_EQ(fieldsOf(untouched), fieldsOf(everyFieldDifferent(100)));
}

TEST_F(DbMgrTest, WritesTakeTheRecordAsItIs) {
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(-7)), 0);
    EXPECT_EQ(db.updatePolicy(account(-7)), 0);
}

TEST_F(DbMgrTest, StoredAccountIsFound) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));

    EXPECT_EQ(db.checkPolicyByAccountId(1), 0);
    EXPECT_EQ(db.checkPolicyByAccountId(2), -1002);
}

TEST_F(DbMgrTest, AbsentAccountLeavesTheRecordAlone) {
    TeskConsumerDbMgr db;
    TeskPolicyData untouched = everyFieldDifferent(100);
    journal.clear();

    EXPECT_EQ(db.getPolicyDataByAccountId(5, untouched), -1002);
    EXPECT_EQ(fieldsOf(untouched), fieldsOf(everyFieldDifferent(100)));
    EXPECT_EQ(messages(), Lines{"W query result: 101"});
}

TEST_F(DbMgrTest, ListAppendsOneRecordForEachRow) {
    TeskConsumerDbMgr db;
    db.insertPolicy(everyFieldDifferent(100));
    db.insertPolicy(account(1));
    TeskPolicyDataList list{std::make_shared<TeskPolicyData>(account(77))};

    EXPECT_EQ(db.getPolicyDataList(list), 0);

    ASSERT_EQ(list.size(), 3U);
    EXPECT_EQ(list.front()->accountId, 77);
    EXPECT_EQ(fieldsOf(**std::next(list.begin())), fieldsOf(account(1)));
    EXPECT_EQ(fieldsOf(*list.back()), fieldsOf(everyFieldDifferent(100)));
}

TEST_F(DbMgrTest, ListEndsQuietlyAtTheFirstStepThatIsNoRow) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    db.insertPolicy(account(2));
    platform.faults.atCall("sqlite3_step", 2, SQLITE_BUSY);
    TeskPolicyDataList list;
    journal.clear();

    EXPECT_EQ(db.getPolicyDataList(list), 0);
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(DbMgrTest, EmptyTableHasNoListAndCountsZero) {
    TeskConsumerDbMgr db;
    TeskPolicyDataList list{std::make_shared<TeskPolicyData>(account(77))};
    int count = 7;
    journal.clear();

    EXPECT_EQ(db.getPolicyDataList(list), -1002);
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(messages(), Lines{"W query result: 101"});
    EXPECT_EQ(db.getAllEasAccountCount(&count), 0);
    EXPECT_EQ(count, 0);
}

TEST_F(DbMgrTest, CountIsTheNumberOfRows) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(3));
    db.insertPolicy(account(9));

    int count = 0;
    EXPECT_EQ(db.getAllEasAccountCount(&count), 0);
    EXPECT_EQ(count, 2);
}

TEST_F(DbMgrTest, CountWithoutARowIsLeftAlone) {
    TeskConsumerDbMgr db;
    platform.faults.atCall("sqlite3_step", 1, SQLITE_BUSY);

    int count = 7;
    EXPECT_EQ(db.getAllEasAccountCount(&count), 0);
    EXPECT_EQ(count, 7);
}

TEST_F(DbMgrTest, FailedStepsOfWritesAreDatabaseFailures) {
    TeskConsumerDbMgr db;
    platform.faults.always("sqlite3_step", SQLITE_FULL);
    journal.clear();

    EXPECT_EQ(db.insertPolicy(account(1)), -1001);
    EXPECT_EQ(db.updatePolicy(account(1)), -1001);
    EXPECT_EQ(db.deletePolicyByAccountId(1), -1001);
    EXPECT_EQ(journal.warnings().size(), 3U);
    EXPECT_EQ(journal.warnings().front().substr(0, 14), "E db failure: ");
}

TEST_F(DbMgrTest, FailedStepsOfReadsAreMissingRows) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    platform.faults.always("sqlite3_step", SQLITE_IOERR);
    journal.clear();

    TeskPolicyData data;
    TeskPolicyDataList list;
    EXPECT_EQ(db.checkPolicyByAccountId(1), -1002);
    EXPECT_EQ(db.getPolicyDataByAccountId(1, data), -1002);
    EXPECT_EQ(db.getPolicyDataList(list), -1002);
    EXPECT_EQ(journal.warnings(), Lines(2, "W query result: 10"));
}

TEST_F(DbMgrTest, FailedPreparationIsLoggedTwiceByEachOperation) {
    TeskConsumerDbMgr db;
    platform.faults.always("sqlite3_prepare_v2", SQLITE_NOMEM);
    journal.clear();

    expectEveryOperationFails(db);

    const auto lines = journal.warnings();
    ASSERT_EQ(lines.size(), 14U);
    for (std::size_t i = 0; i < lines.size(); i += 2) {
        EXPECT_EQ(lines[i].rfind("E sqlite3_prepare_v2 failed: ", 0), 0U) << lines[i];
        EXPECT_EQ(lines[i + 1].rfind("E db failure: ", 0), 0U) << lines[i + 1];
    }
}

TEST_F(DbMgrTest, FailedFinalizeIsLogged) {
    TeskConsumerDbMgr db;
    platform.faults.always("sqlite3_finalize", 5);
    journal.clear();

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_EQ(messages(), Lines{"W sqlite3_finalize failed: [5]"});
}

TEST_F(DbMgrTest, EachOperationPreparesItsExactText) {
    TeskConsumerDbMgr db;
    TeskPolicyData data;
    TeskPolicyDataList list;
    int count = 0;
    journal.clear();

    db.checkPolicyByAccountId(1);
    db.insertPolicy(account(1));
    db.updatePolicy(account(1));
    db.getPolicyDataByAccountId(1, data);
    db.getPolicyDataList(list);
    db.getAllEasAccountCount(&count);
    db.deletePolicyByAccountId(1);

    EXPECT_EQ(journal.calls({"sqlite3_"}),
              (Lines{"sqlite3_prepare_v2 select * from eas_policy_tbl where account_id=?;",
                     "sqlite3_prepare_v2 " + TeskPolicyTable::insertSql(),
                     "sqlite3_prepare_v2 " + TeskPolicyTable::updateSql(),
                     "sqlite3_prepare_v2 select * from eas_policy_tbl where account_id=?;",
                     "sqlite3_prepare_v2 select * from eas_policy_tbl;",
                     "sqlite3_prepare_v2 select count(account_id) from eas_policy_tbl;",
                     "sqlite3_prepare_v2 delete from eas_policy_tbl where account_id=?;"}));
}

TEST_F(DbMgrTest, OperationsLogTheirBeginningAndMostTheirEnd) {
    TeskConsumerDbMgr db;
    TeskPolicyData data;
    TeskPolicyDataList list;
    int count = 0;
    const Lines both{"I Enter", "I Leave"};

    db.insertPolicy(account(1));
    db.checkPolicyByAccountId(1);
    db.updatePolicy(account(1));
    db.getPolicyDataByAccountId(1, data);
    db.getPolicyDataList(list);
    db.getAllEasAccountCount(&count);
    db.deletePolicyByAccountId(1);

    for (const auto* name : {"insertPolicy", "checkPolicyByAccountId", "updatePolicy", "getPolicyDataByAccountId",
                             "deletePolicyByAccountId"}) {
        EXPECT_EQ(journal.logsOf(name), both) << name;
    }
    EXPECT_EQ(journal.logsOf("getPolicyDataList"), Lines{"I Enter"});
    EXPECT_EQ(journal.logsOf("getAllEasAccountCount"), Lines{"I Enter"});
}

TEST_F(DbMgrTest, BusyDatabaseIsTriedSixTimesWithGrowingSleeps) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    OtherProgram other(dbPath());
    other.run("begin exclusive");
    journal.clear();

    EXPECT_EQ(db.insertPolicy(account(2)), -1001);

    EXPECT_EQ(journal.calls({"g_usleep"}),
              (Lines{"g_usleep 100000", "g_usleep 200000", "g_usleep 300000", "g_usleep 400000", "g_usleep 500000"}));
    EXPECT_EQ(journal.warnings(), (Lines{"W busy handler called! count - 1", "W busy handler called! count - 2",
                                         "W busy handler called! count - 3", "W busy handler called! count - 4",
                                         "W busy handler called! count - 5", "E sqlite busy error!",
                                         "E db failure: database is locked", "W sqlite3_finalize failed: [5]"}));
    EXPECT_EQ(journal.logsOf("__busyHandler").front(), "I ");
    EXPECT_EQ(journal.logsOf("__busyHandler").size(), 12U);
    other.run("rollback");
    EXPECT_EQ(db.insertPolicy(account(2)), 0);
}

TEST_F(DbMgrTest, AbsentNamesReadAsEmptyTexts) {
    TeskConsumerDbMgr db;
    db.insertPolicy(everyFieldDifferent(100));
    OtherProgram(dbPath()).run("update eas_policy_tbl set account_name=null, display_name=null");

    TeskPolicyData read;
    EXPECT_EQ(db.getPolicyDataByAccountId(100, read), 0);
    EXPECT_EQ(read.accountName, "");
    EXPECT_EQ(read.displayName, "");
}

TEST_F(DbMgrTest, LogLinesCarryTagFileFunctionAndLine) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));

    for (const auto& line : journal.logLines()) {
        EXPECT_EQ(line.tag, "TESK_CONSUMER");
        EXPECT_EQ(line.file, "TeskConsumerDbMgr.cpp");
        EXPECT_NE(line.function, "");
        EXPECT_GT(line.line, 0);
    }
    EXPECT_EQ(journal.logLines().front().function, "TeskConsumerDbMgr");
    EXPECT_EQ(journal.logLines().front().text, "");
}

} // namespace
