#include <sqlite3.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <limits>

#include "TeskConsumerDbMgr.h"
#include "file_bytes.h"
#include "other_program.h"
#include "rules/TeskPolicyTable.h"
#include "unit_test.h"

namespace {

namespace fs = std::filesystem;

/// An operation, the statement that it prepares, and whether it logs its end.
struct Operation {
    const char* name;
    std::function<int(TeskConsumerDbMgr&)> run;
    std::string sql;
    bool logsItsEnd;
};

constexpr char selectOne[] = "select * from eas_policy_tbl where account_id=?;";

/// Every operation, on account 1.
const std::vector<Operation>& operations() {
    static TeskPolicyData data;
    static TeskPolicyDataList list;
    static int count = 0;
    static const std::vector<Operation> all{
        {"insertPolicy", [](auto& db) { return db.insertPolicy(account(1)); }, TeskPolicyTable::insertSql(), true},
        {"updatePolicy", [](auto& db) { return db.updatePolicy(account(1)); }, TeskPolicyTable::updateSql(), true},
        {"checkPolicyByAccountId", [](auto& db) { return db.checkPolicyByAccountId(1); }, selectOne, true},
        {"getPolicyDataByAccountId", [](auto& db) { return db.getPolicyDataByAccountId(1, data); }, selectOne, true},
        {"getPolicyDataList", [](auto& db) { return db.getPolicyDataList(list); }, "select * from eas_policy_tbl;",
         false},
        {"getAllEasAccountCount", [](auto& db) { return db.getAllEasAccountCount(&count); },
         "select count(account_id) from eas_policy_tbl;", false},
        {"deletePolicyByAccountId", [](auto& db) { return db.deletePolicyByAccountId(1); },
         "delete from eas_policy_tbl where account_id=?;", true},
    };
    return all;
}

void expectEveryOperationFails(TeskConsumerDbMgr& db) {
    for (const auto& operation : operations()) {
        EXPECT_EQ(operation.run(db), TESK_DB_FAILURE) << operation.name;
    }
}

class DbMgrTest : public UnitTest {
protected:
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

    /// The stored account; the test fails when there is none.
    static TeskPolicyData read(TeskConsumerDbMgr& db, int accountId) {
        TeskPolicyData data;
        EXPECT_EQ(db.getPolicyDataByAccountId(accountId, data), 0);
        return data;
    }

    bool logged(const std::string& text) const {
        const auto lines = journal.logs();
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& line) { return line.find(text) != std::string::npos; });
    }

    const fs::path folder = platform.dataPath + "dbspace";
    const fs::path file = folder / ".tesk.db";
};

TEST_F(DbMgrTest, FirstStartMakesFolderFileAndTable) {
    const TeskConsumerDbMgr db;

    EXPECT_EQ(messages(), (Lines{"I dbPath : " + file.string(), "I dbDir : " + folder.string(), "I Let's create db!"}));
    EXPECT_EQ(fs::status(folder).permissions(), static_cast<fs::perms>(0755));
    EXPECT_EQ(fs::status(file).permissions(), static_cast<fs::perms>(0600)) << "it is for the service alone";
    auto text = TeskPolicyTable::createSql();
    text.pop_back();
    EXPECT_EQ(OtherProgram(file).rows("select sql from sqlite_master where name='eas_policy_tbl'"),
              std::vector<Lines>{{text}});
    const auto calls = journal.calls({"sqlite3_"});
    EXPECT_EQ(Lines(calls.begin(), calls.begin() + 3),
              (Lines{"sqlite3_open", "sqlite3_busy_handler", "sqlite3_prepare_v2 " + TeskPolicyTable::createSql()}));
}

TEST_F(DbMgrTest, SecondStartOpensTheFileAndCreatesNothing) {
    { const TeskConsumerDbMgr first; }
    journal.clear();

    const TeskConsumerDbMgr second;

    EXPECT_EQ(messages(), Lines{"I dbPath : " + file.string()});
    EXPECT_EQ(journal.calls({"sqlite3_prepare"}), Lines{});
}

TEST_F(DbMgrTest, OpeningAndClosingAreTraced) {
    { TeskConsumerDbMgr().insertPolicy(account(1)); }

    const auto lines = journal.logs();
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + 3), (Lines{"I ", "I ", "I Enter"}));
    EXPECT_EQ(journal.logsOf("__init"), Lines{"I "});
    EXPECT_EQ(journal.logsOf("__openDb").front(), "I Enter");
    EXPECT_EQ(journal.logsOf("__openDb").back(), "I Leave");
    EXPECT_EQ(journal.logsOf("~TeskConsumerDbMgr"), Lines{"I "});
    for (const auto& line : journal.logLines()) {
        EXPECT_EQ(line.tag, "TESK_CONSUMER");
        EXPECT_EQ(line.file, "TeskConsumerDbMgr.cpp");
        EXPECT_GT(line.line, 0);
    }
    EXPECT_EQ(journal.logLines().front().function, "TeskConsumerDbMgr");
    EXPECT_EQ(journal.calls({"sqlite3_close"}), Lines(2, "sqlite3_close")) << "the new file and the named one";
}

TEST_F(DbMgrTest, NoStatisticsOfMemoryAreKept) {
    TeskConsumerDbMgr db;
    EXPECT_EQ(db.insertPolicy(account(1)), 0);

    EXPECT_EQ(sqlite3_memory_used(), 0);
}

TEST_F(DbMgrTest, FailedCreationYieldsNoInstanceAndIsTriedAgain) {
    platform.faults.atCall("operator new", 1);

    EXPECT_EQ(TeskConsumerDbMgr::getInstance(), nullptr);
    auto* const instance = TeskConsumerDbMgr::getInstance();
    EXPECT_NE(instance, nullptr);
    EXPECT_EQ(TeskConsumerDbMgr::getInstance(), instance);
}

/// What keeps the database from being opened, what is logged of it, and how many connections are closed again.
struct Obstacle {
    const char* name;
    std::function<void(fake::FakePlatform&)> set;
    std::string error;
    std::size_t closed;
    bool logsItsEnd;
};

/// Puts something into the place of the database.
template <typename Put>
auto inItsPlace(const Put& put) {
    return [put](fake::FakePlatform& platform) {
        fs::create_directory(platform.dataPath + "dbspace");
        put(platform.dataPath + "dbspace/.tesk.db");
    };
}

auto linkTo(const std::string& target) {
    return inItsPlace([target](const fs::path& file) { fs::create_symlink(target, file); });
}

/// Puts a chain of so many links into the file's place, whose end is "store" in the data folder.
void linkThrough(const std::string& dataPath, int links) {
    const auto link = [&](int number) { return dataPath + "link" + std::to_string(number); };
    fs::create_directory(dataPath + "dbspace");
    fs::create_symlink("store", link(1));
    for (int number = 2; number < links; ++number) {
        fs::create_symlink(link(number - 1), link(number));
    }
    fs::create_symlink(link(links - 1), dataPath + "dbspace/.tesk.db");
}

const std::vector<Obstacle>& obstacles() {
    static const std::string notOpened = "E sqlite3_open failed: [14]";
    static const std::string noBusyHandler = "E sqlite3_busy_handler failed: [21]";
    static const std::vector<Obstacle> all{
        {"NoDataPath", [](auto& platform) { platform.faults.always("app_get_data_path"); },
         "E app_get_data_path failed", 0, false},
        {"NoFolder", [](auto& platform) { platform.dataPath += "missing/"; }, "E g_mkdir() failed!", 0, false},
        {"DirectoryInItsPlace", inItsPlace([](const fs::path& file) { fs::create_directory(file); }), notOpened, 1,
         false},
        {"NoBusyHandler", [](auto& platform) { platform.faults.always("sqlite3_busy_handler", SQLITE_MISUSE); },
         noBusyHandler, 1, true},
        {"NoBusyHandlerOfTheNamedFile",
         [](auto& platform) { platform.faults.atCall("sqlite3_busy_handler", 2, SQLITE_MISUSE); }, noBusyHandler, 2,
         true},
        {"FileThatCannotBeNamed", [](auto& platform) { platform.faults.always("rename", EACCES); },
         "E rename failed: [13]", 1 + operations().size(), false},
        {"LinkToWhereNothingCanBeMade", linkTo("/nowhere/at/all"), notOpened, 1, false},
        {"MoreLinksThanTheKernelFollows", [](auto& platform) { linkThrough(platform.dataPath, 41); }, notOpened, 0,
         false},
    };
    return all;
}

class UnopenedDatabaseTest : public DbMgrTest, public ::testing::WithParamInterface<Obstacle> {};

TEST_P(UnopenedDatabaseTest, FailsEveryOperation) {
    GetParam().set(platform);
    {
        TeskConsumerDbMgr db;

        EXPECT_EQ(journal.warnings(), (Lines{GetParam().error, "W db initialize fail!"}));
        EXPECT_EQ(logged("I Leave"), GetParam().logsItsEnd);
        expectEveryOperationFails(db);
    }
    EXPECT_EQ(journal.calls({"sqlite3_close"}).size(), GetParam().closed);
    EXPECT_FALSE(fs::exists(platform.dataPath + "store")) << "nothing is made at the end of too many links";
}

INSTANTIATE_TEST_SUITE_P(, UnopenedDatabaseTest, ::testing::ValuesIn(obstacles()),
                         [](const auto& row) { return std::string(row.param.name); });

/// What keeps a first start from its table: a failing function, its code, and the line that says so.
struct MissingTable {
    const char* function;
    int code;
    std::string error;
};

TEST_F(DbMgrTest, TableThatCouldNotBeMadeIsTriedAgainByTheNextOperation) {
    const auto creation = "[" + TeskPolicyTable::createSql() + "] - ";
    for (const auto& missing : {MissingTable{"sqlite3_prepare_v2", SQLITE_FULL, "E query prepare fail: " + creation},
                                MissingTable{"sqlite3_step", SQLITE_FULL, "W db create fail: " + creation},
                                MissingTable{"rename", ENOSPC, "E rename failed: [28]"}}) {
        SCOPED_TRACE(missing.function);
        fs::remove_all(folder);
        platform.faults.atCall(missing.function, 1, missing.code);
        TeskConsumerDbMgr db;
        EXPECT_TRUE(logged(missing.error));
        EXPECT_FALSE(fs::exists(file)) << "a file without a table would never be given one";

        EXPECT_EQ(db.insertPolicy(account(1)), 0);

        EXPECT_EQ(read(db, 1).accountId, 1);
        EXPECT_EQ(TeskConsumerDbMgr().checkPolicyByAccountId(1), 0) << "the next start finds it in its place";
    }
}

TEST_F(DbMgrTest, TableThatStaysMissingIsTriedOnceByEachOperation) {
    platform.faults.always("rename", ENOSPC);
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), TESK_DB_FAILURE);

    EXPECT_EQ(platform.faults.calls().at("rename"), 2) << "at the start and by the operation";
}

TEST_F(DbMgrTest, FileWithoutATableThatWasThereIsLeftAlone) {
    fs::create_directory(folder);
    writeBytes(file, "");
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), TESK_DB_FAILURE);

    EXPECT_EQ(fs::file_size(file), 0U);
}

TEST_F(DbMgrTest, FolderNamedLikeTheNewFileIsPassedOver) {
    fs::create_directories(file.string() + ".new/of somebody else");

    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_TRUE(fs::exists(file.string() + ".new/of somebody else"));
}

TEST_F(DbMgrTest, ValueThatCannotBeBoundFailsTheOperationAndWritesNothing) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    auto changed = account(1);
    changed.accountName = "changed";
    for (const auto* function : {"sqlite3_bind_int", "sqlite3_bind_text"}) {
        platform.faults.always(function, SQLITE_NOMEM);
        journal.clear();
        EXPECT_EQ(db.insertPolicy(account(2)), TESK_DB_FAILURE);
        EXPECT_EQ(db.updatePolicy(changed), TESK_DB_FAILURE);
        EXPECT_EQ(journal.warnings(), Lines(2, "E db failure: not an error"));
        platform.faults.none();
    }
    platform.faults.always("sqlite3_bind_int", SQLITE_NOMEM);
    TeskPolicyData data;
    EXPECT_EQ(db.checkPolicyByAccountId(1), TESK_DB_FAILURE);
    EXPECT_EQ(db.getPolicyDataByAccountId(1, data), TESK_DB_FAILURE);
    EXPECT_EQ(db.deletePolicyByAccountId(1), TESK_DB_FAILURE);
    platform.faults.none();

    EXPECT_EQ(read(db, 1).accountName, "");
    EXPECT_EQ(db.checkPolicyByAccountId(2), TESK_DB_NO_ROW);
}

TEST_F(DbMgrTest, WhatAKilledStartLeftIsCleared) {
    fs::create_directory(folder);
    writeBytes(file.string() + ".new", "half a database");
    writeBytes(file.string() + ".new-journal", "half a journal");

    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 1) << "the database alone";
}

TEST_F(DbMgrTest, LinkInThePlaceOfTheNewFileIsNotFollowed) {
    fs::create_directory(folder);
    const auto other = platform.dataPath + "other";
    writeBytes(other, "of somebody else");
    fs::create_symlink(other, file.string() + ".new");

    const TeskConsumerDbMgr db;

    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(file)));
    EXPECT_EQ(bytesOf(other), "of somebody else");
}

TEST_F(DbMgrTest, DanglingLinkIsFollowed) {
    fs::create_directory(platform.dataPath + "elsewhere");
    linkTo("../elsewhere/store")(platform);

    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_regular_file(platform.dataPath + "elsewhere/store"));
}

TEST_F(DbMgrTest, AsManyLinksAreFollowedAsTheKernelFollows) {
    linkThrough(platform.dataPath, 40);

    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_TRUE(fs::is_regular_file(platform.dataPath + "store"));
}

/// What another database leaves after a sudden end, to be played into it by whoever opens it next.
struct LeftOver {
    const char* suffix;
    const char* change; ///< what makes the other database write it
};

class LeftOverTest : public DbMgrTest, public ::testing::WithParamInterface<LeftOver> {};

TEST_P(LeftOverTest, IsNotPlayedIntoANewDatabase) {
    fs::create_directory(folder);
    const fs::path other = platform.dataPath + "other.db";
    const fs::path leftOver = file.string() + GetParam().suffix;
    OtherProgram program(other);
    program.run("pragma cache_size=1; create table other (a);"
                "with recursive n(i) as (select 1 union all select i+1 from n where i<100) "
                "insert into other select randomblob(1000) from n");
    program.run(GetParam().change);
    fs::copy_file(other.string() + GetParam().suffix, leftOver);
    { const TeskConsumerDbMgr first; }

    TeskConsumerDbMgr next;

    EXPECT_EQ(next.insertPolicy(account(1)), 0);
    EXPECT_FALSE(fs::exists(leftOver));
}

INSTANTIATE_TEST_SUITE_P(, LeftOverTest,
                         ::testing::Values(LeftOver{"-journal", "begin; pragma user_version=7;"
                                                                "update other set a=randomblob(1000)"},
                                           LeftOver{"-wal", "pragma journal_mode=wal; create table another (a)"}));

/// A file that is no store of policies, and what is logged of it.
struct Damage {
    const char* name;
    std::function<void(const fs::path& file)> inflict;
    const char* complaint;
};

/// Puts a database into the file's place that another program has set up.
auto databaseOf(const std::string& sql) {
    return [sql](const fs::path& file) { OtherProgram(file).run(sql); };
}

const std::vector<Damage>& damages() {
    static const auto bytes = [](const std::string& text) {
        return [text](const fs::path& file) { writeBytes(file, text); };
    };
    static const std::vector<Damage> all{
        {"EmptyFile", bytes(""), "no such table: eas_policy_tbl"},
        {"NoDatabase", bytes(std::string(5000, 'x')), "file is not a database"},
        {"FewerColumns",
         databaseOf("create table eas_policy_tbl (account_id integer primary key, device_password_enabled integer)"),
         "no such column: allow_simple_password"},
        {"ViewOfThatName",
         databaseOf("create table accounts (account_id, device_password_enabled, allow_simple_password);"
                    "create view eas_policy_tbl as select * from accounts"),
         "cannot modify eas_policy_tbl because it is a view"},
        {"CutFile",
         [](const fs::path& file) {
             databaseOf(TeskPolicyTable::createSql())(file);
             fs::resize_file(file, 4096);
         },
         "database disk image is malformed"},
    };
    return all;
}

class DamagedFileTest : public DbMgrTest, public ::testing::WithParamInterface<Damage> {};

TEST_P(DamagedFileTest, RefusesChangesAndStaysAsItIs) {
    fs::create_directory(folder);
    GetParam().inflict(file);
    const auto before = bytesOf(file);
    TeskConsumerDbMgr db;

    EXPECT_NE(db.checkPolicyByAccountId(1), 0);
    EXPECT_EQ(db.insertPolicy(account(1)), TESK_DB_FAILURE);
    EXPECT_EQ(db.updatePolicy(account(1)), TESK_DB_FAILURE);

    EXPECT_TRUE(logged(GetParam().complaint));
    EXPECT_EQ(bytesOf(file), before);
}

INSTANTIATE_TEST_SUITE_P(, DamagedFileTest, ::testing::ValuesIn(damages()),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_F(DbMgrTest, ValuesOfOtherKindsReadAsNumbersAndTexts) {
    TeskConsumerDbMgr db;
    OtherProgram(file).run("insert into eas_policy_tbl (account_id, device_password_enabled,"
                           " min_device_password_length, device_password_history, allow_wifi, account_name,"
                           " display_name) values (7, 'yes', '6 or more', 3.9, x'31', null, 12)");

    const auto data = read(db, 7);

    EXPECT_EQ(data.devicePasswordEnabled, 0);
    EXPECT_EQ(data.minDevicePasswordLength, 6);
    EXPECT_EQ(data.devicePasswordHistory, 3);
    EXPECT_EQ(data.allowWifi, 1);
    EXPECT_EQ(data.accountName, "");
    EXPECT_EQ(data.displayName, "12");
}

TEST_F(DbMgrTest, InsertedRecordIsReadBackFieldByField) {
    TeskConsumerDbMgr db;
    const auto expected = fieldsOf(everyFieldDifferent(100));
    ASSERT_EQ(db.insertPolicy(everyFieldDifferent(100)), 0);

    EXPECT_EQ(fieldsOf(read(db, 100)), expected);
    auto columns = expected;
    columns.insert(columns.end(), 6, "NULL");
    EXPECT_EQ(OtherProgram(file).rows("select * from eas_policy_tbl"), std::vector<Lines>{columns});
}

TEST_F(DbMgrTest, ExtremeNumbersAndOddTextsSurvive) {
    TeskConsumerDbMgr db;
    auto written = account(std::numeric_limits<int>::max());
    written.minDevicePasswordLength = std::numeric_limits<int>::min();
    written.accountName = "'; drop table eas_policy_tbl; --";
    written.displayName = "";
    ASSERT_EQ(db.insertPolicy(written), 0);

    EXPECT_EQ(fieldsOf(read(db, written.accountId)), fieldsOf(written));
}

TEST_F(DbMgrTest, UpdateOverwritesEveryColumnOfItsRowOnly) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    db.insertPolicy(account(100));

    EXPECT_EQ(db.updatePolicy(everyFieldDifferent(100)), 0);

    EXPECT_EQ(fieldsOf(read(db, 100)), fieldsOf(everyFieldDifferent(100)));
    EXPECT_EQ(fieldsOf(read(db, 1)), fieldsOf(account(1)));
}

TEST_F(DbMgrTest, ChangesOfAnAbsentAccountSucceedAndChangeNothing) {
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.updatePolicy(account(5)), 0);
    EXPECT_EQ(db.deletePolicyByAccountId(5), 0);
    EXPECT_EQ(db.checkPolicyByAccountId(5), TESK_DB_NO_ROW);
}

TEST_F(DbMgrTest, SecondInsertOfAnAccountFails) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(5));
    journal.clear();

    EXPECT_EQ(db.insertPolicy(account(5)), TESK_DB_FAILURE);
    EXPECT_EQ(journal.warnings().front(), "E db failure: UNIQUE constraint failed: eas_policy_tbl.account_id");
}

TEST_F(DbMgrTest, OnlyTheDeletedAccountIsGone) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    db.insertPolicy(account(5));

    EXPECT_EQ(db.deletePolicyByAccountId(5), 0);

    EXPECT_EQ(db.checkPolicyByAccountId(5), TESK_DB_NO_ROW);
    EXPECT_EQ(db.checkPolicyByAccountId(1), 0);
}

TEST_F(DbMgrTest, InvalidAccountsAreRefusedBeforeAnySql) {
    TeskConsumerDbMgr db;
    TeskPolicyData untouched = everyFieldDifferent(100);
    journal.clear();

    EXPECT_EQ(db.checkPolicyByAccountId(0), TESK_DB_INVALID_ACCOUNT);
    EXPECT_EQ(db.deletePolicyByAccountId(-5), TESK_DB_INVALID_ACCOUNT);
    EXPECT_EQ(db.getPolicyDataByAccountId(0, untouched), TESK_DB_INVALID_ACCOUNT);
    EXPECT_EQ(journal.calls({"sqlite3_"}), Lines{});
    EXPECT_EQ(journal.warnings(), Lines(3, "E accountId is invalid"));
    EXPECT_EQ(fieldsOf(untouched), fieldsOf(everyFieldDifferent(100)));
}

TEST_F(DbMgrTest, WritesTakeTheRecordAsItIs) {
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(-7)), 0);
    EXPECT_EQ(db.updatePolicy(account(-7)), 0);
}

TEST_F(DbMgrTest, AbsentAccountLeavesTheRecordAlone) {
    TeskConsumerDbMgr db;
    TeskPolicyData untouched = everyFieldDifferent(100);
    journal.clear();

    EXPECT_EQ(TESK_DB_NO_ROW, -1002) << "the other codes are seen in the log";
    EXPECT_EQ(db.getPolicyDataByAccountId(5, untouched), TESK_DB_NO_ROW);
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

TEST_F(DbMgrTest, ListEndsAtAFailedStepWhichIsLogged) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    db.insertPolicy(account(2));
    platform.faults.atCall("sqlite3_step", 2, SQLITE_BUSY);
    TeskPolicyDataList list;
    journal.clear();

    EXPECT_EQ(db.getPolicyDataList(list), 0);
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(journal.warnings(), Lines{"E db failure: another row available"});
}

TEST_F(DbMgrTest, EmptyTableHasNoListAndCountsZero) {
    TeskConsumerDbMgr db;
    TeskPolicyDataList list{std::make_shared<TeskPolicyData>(account(77))};
    int count = 7;
    journal.clear();

    EXPECT_EQ(db.getPolicyDataList(list), TESK_DB_NO_ROW);
    EXPECT_EQ(list.size(), 1U);
    EXPECT_EQ(messages(), Lines{"W query result: 101"});
    EXPECT_EQ(db.getAllEasAccountCount(&count), 0);
    EXPECT_EQ(count, 0);
}

TEST_F(DbMgrTest, CountIsTheNumberOfRowsAndWithoutAnAnswerLeftAlone) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(3));
    db.insertPolicy(account(9));
    int count = 0;

    EXPECT_EQ(db.getAllEasAccountCount(&count), 0);
    EXPECT_EQ(count, 2);

    platform.faults.atCall("sqlite3_step", 1, SQLITE_BUSY);
    count = 7;
    EXPECT_EQ(db.getAllEasAccountCount(&count), 0);
    EXPECT_EQ(count, 7);
}

TEST_F(DbMgrTest, FailedStepsOfWritesAreDatabaseFailures) {
    TeskConsumerDbMgr db;
    platform.faults.always("sqlite3_step", SQLITE_FULL);
    journal.clear();

    EXPECT_EQ(db.insertPolicy(account(1)), TESK_DB_FAILURE);
    EXPECT_EQ(db.updatePolicy(account(1)), TESK_DB_FAILURE);
    EXPECT_EQ(db.deletePolicyByAccountId(1), TESK_DB_FAILURE);
    EXPECT_EQ(journal.warnings().size(), 3U);
    EXPECT_EQ(journal.warnings().front().substr(0, 14), "E db failure: ");
}

TEST_F(DbMgrTest, FailedStepsOfReadsAreLoggedAndCountAsMissingRows) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    platform.faults.always("sqlite3_step", SQLITE_IOERR);
    TeskPolicyData data;
    TeskPolicyDataList list;
    journal.clear();

    EXPECT_EQ(db.checkPolicyByAccountId(1), TESK_DB_NO_ROW);
    EXPECT_EQ(db.getPolicyDataByAccountId(1, data), TESK_DB_NO_ROW);
    EXPECT_EQ(db.getPolicyDataList(list), TESK_DB_NO_ROW);
    EXPECT_EQ(journal.warnings(), (Lines{"E db failure: not an error", "E db failure: not an error",
                                         "W query result: 10", "E db failure: not an error", "W query result: 10"}));
}

TEST_F(DbMgrTest, FailedPreparationIsLoggedTwiceByEachOperation) {
    TeskConsumerDbMgr db;
    platform.faults.always("sqlite3_prepare_v2", SQLITE_NOMEM);
    journal.clear();

    expectEveryOperationFails(db);

    const auto lines = journal.warnings();
    ASSERT_EQ(lines.size(), 2 * operations().size());
    for (std::size_t i = 0; i < lines.size(); i += 2) {
        EXPECT_EQ(lines[i].rfind("E sqlite3_prepare_v2 failed: ", 0), 0U) << lines[i];
        EXPECT_EQ(lines[i + 1].rfind("E db failure: ", 0), 0U) << lines[i + 1];
    }
}

TEST_F(DbMgrTest, FailedFinalizeIsLogged) {
    TeskConsumerDbMgr db;
    platform.faults.always("sqlite3_finalize", SQLITE_BUSY);
    journal.clear();

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_EQ(messages(), Lines{"W sqlite3_finalize failed: [5]"});
}

TEST_F(DbMgrTest, EachOperationPreparesItsExactTextAndIsTraced) {
    TeskConsumerDbMgr db;
    for (const auto& operation : operations()) {
        journal.clear();
        EXPECT_EQ(operation.run(db), 0) << operation.name;
        EXPECT_EQ(journal.calls({"sqlite3_"}), Lines{"sqlite3_prepare_v2 " + operation.sql});
        EXPECT_EQ(journal.logsOf(operation.name),
                  operation.logsItsEnd ? (Lines{"I Enter", "I Leave"}) : Lines{"I Enter"});
    }
}

TEST_F(DbMgrTest, BusyDatabaseIsTriedSixTimesWithGrowingSleeps) {
    TeskConsumerDbMgr db;
    db.insertPolicy(account(1));
    OtherProgram other(file);
    other.run("begin exclusive");
    journal.clear();

    EXPECT_EQ(db.insertPolicy(account(2)), TESK_DB_FAILURE);

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

} // namespace
