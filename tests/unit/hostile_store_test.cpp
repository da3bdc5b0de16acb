#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>

#include "TeskConsumerDbMgr.h"
#include "file_bytes.h"
#include "other_program.h"
#include "rules/TeskPolicyTable.h"
#include "unit_test.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t pageSize = 4096;

/// Some bytes in a row are others.
std::string withRandomBytes(std::string bytes, std::mt19937& random) {
    const auto begin = random() % bytes.size();
    const auto end = std::min<std::size_t>(begin + 1 + random() % pageSize, bytes.size());
    for (auto i = begin; i < end; ++i) {
        bytes[i] = static_cast<char>(random());
    }
    return bytes;
}

/// While it lives, the process may do no more than any user may, even when a superuser runs the test. It keeps its way
/// into the data folder of the test.
class AnyUser {
public:
    explicit AnyUser(const fs::path& dataFolder) {
        if (geteuid() == 0) {
            EXPECT_EQ(chown(dataFolder.parent_path().c_str(), nobody, nobody), 0);
            EXPECT_EQ(chown(dataFolder.c_str(), nobody, nobody), 0);
            EXPECT_EQ(seteuid(nobody), 0);
        }
    }
    ~AnyUser() {
        if (getuid() == 0) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
    AnyUser(const AnyUser&) = delete;
    AnyUser& operator=(const AnyUser&) = delete;

private:
    static constexpr uid_t nobody = 65534;
};

/// The service's database folder as something else has left it.
class HostileStoreTest : public UnitTest {
protected:
    HostileStoreTest() { fs::create_directory(folder_); }

    const fs::path& folder() const { return folder_; }
    const fs::path& file() const { return file_; }

    /// Puts a chain of so many links into the file's place, whose end is "store" in the data folder.
    void linkThrough(int links) const {
        for (int link = 1; link < links; ++link) {
            fs::create_symlink(link == 1 ? "store" : linkName(link - 1), linkName(link));
        }
        fs::create_symlink(linkName(links - 1), file());
    }

    static fs::path journalOf(const fs::path& database) { return database.string() + "-journal"; }
    static fs::path walOf(const fs::path& database) { return database.string() + "-wal"; }

    /// Leaves the journal of a database that was cut off in the middle of a large change.
    void leaveHotJournal(const fs::path& place) const {
        const auto path = folder_ / "other.db";
        OtherProgram other(path);
        other.run("pragma cache_size=1");
        other.run("create table other (a)");
        other.run("with recursive n(i) as (select 1 union all select i+1 from n where i<100) "
                  "insert into other select randomblob(1000) from n");
        other.run("begin; pragma user_version=7");
        other.run("update other set a=randomblob(1000)");
        fs::copy_file(journalOf(path), place);
        other.run("rollback");
        fs::remove(path);
    }

    /// Leaves the write-ahead log of a database that was never closed.
    void leaveWriteAheadLog(const fs::path& place) const {
        const auto path = folder_ / "other.db";
        OtherProgram other(path);
        other.run("pragma journal_mode=wal");
        other.run("create table other (a)");
        fs::copy_file(walOf(path), place);
        other.run("pragma journal_mode=delete");
        fs::remove(path);
    }

    /// The bytes of a database of 20 accounts on several pages.
    std::string soundBytes() const {
        { const TeskConsumerDbMgr db; }
        leaveDatabase("with recursive n(i) as (select 1 union all select i+1 from n where i<20)"
                      " insert into eas_policy_tbl (account_id, account_name) select i, hex(zeroblob(250)) from n");
        return bytesOf(file());
    }

    /// Everything that only reads, each result one of those that the operation has.
    static void read(TeskConsumerDbMgr& db) {
        TeskPolicyData data;
        TeskPolicyDataList list;
        int count = 0;
        expectOneOf(db.checkPolicyByAccountId(7), {0, TESK_DB_NO_ROW, TESK_DB_FAILURE});
        expectOneOf(db.getPolicyDataByAccountId(7, data), {0, TESK_DB_NO_ROW, TESK_DB_FAILURE});
        expectOneOf(db.getPolicyDataList(list), {0, TESK_DB_NO_ROW, TESK_DB_FAILURE});
        expectOneOf(db.getAllEasAccountCount(&count), {0, TESK_DB_FAILURE});
    }

    static void expectOneOf(int result, const std::vector<int>& results) {
        EXPECT_NE(std::find(results.begin(), results.end(), result), results.end()) << result;
    }

    /// Everything that writes. Returns whether something was accepted.
    static bool change(TeskConsumerDbMgr& db) {
        const std::vector<int> results{db.insertPolicy(account(77)), db.updatePolicy(account(7)),
                                       db.deletePolicyByAccountId(8)};
        for (const int result : results) {
            expectOneOf(result, {0, TESK_DB_FAILURE});
        }
        return std::find(results.begin(), results.end(), 0) != results.end();
    }

    /// Reads, and changes nothing, without a superuser's rights.
    void useInVainAsAnyUser() const {
        const AnyUser restrained(folder().parent_path());
        TeskConsumerDbMgr db;
        read(db);
        EXPECT_FALSE(change(db));
    }

    /// Has another program set the file up.
    void leaveDatabase(const std::string& sql) const { OtherProgram(file()).run(sql); }

    bool isLogged(const std::string& text) const {
        const auto lines = journal.warnings();
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& line) { return line.find(text) != std::string::npos; });
    }

private:
    std::string linkName(int link) const { return platform.dataPath + "link" + std::to_string(link); }

    fs::path folder_ = platform.dataPath + "dbspace";
    fs::path file_ = folder_ / ".tesk.db";
};

TEST_F(HostileStoreTest, JournalWithoutItsDatabaseIsNotPlayedIntoANewOne) {
    leaveHotJournal(journalOf(file()));
    { const TeskConsumerDbMgr first; }

    TeskConsumerDbMgr next;

    EXPECT_EQ(next.insertPolicy(account(1)), 0);
    EXPECT_FALSE(fs::exists(journalOf(file())));
}

TEST_F(HostileStoreTest, WriteAheadLogWithoutItsDatabaseIsNotPlayedIntoANewOne) {
    leaveWriteAheadLog(walOf(file()));
    { const TeskConsumerDbMgr first; }

    TeskConsumerDbMgr next;

    EXPECT_EQ(next.insertPolicy(account(1)), 0);
    EXPECT_FALSE(fs::exists(walOf(file())));
}

TEST_F(HostileStoreTest, DanglingLinkIsFollowed) {
    fs::create_directory(platform.dataPath + "elsewhere");
    fs::create_symlink("../elsewhere/store", file());

    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_TRUE(fs::is_regular_file(platform.dataPath + "elsewhere/store"));
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(HostileStoreTest, AsManyLinksAreFollowedAsTheKernelFollows) {
    linkThrough(40);

    TeskConsumerDbMgr db;

    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_TRUE(fs::is_regular_file(platform.dataPath + "store"));
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(HostileStoreTest, MoreLinksCountAsACircle) {
    linkThrough(41);

    TeskConsumerDbMgr db;

    EXPECT_EQ(journal.warnings(), (Lines{"E sqlite3_open failed: [14]", "W db initialize fail!"}));
    EXPECT_FALSE(fs::exists(platform.dataPath + "store"));
}

TEST_F(HostileStoreTest, LinkToWhereNothingCanBeMadeIsKept) {
    fs::create_symlink(platform.dataPath + "missing/store", file());

    TeskConsumerDbMgr db;

    EXPECT_EQ(journal.warnings(), (Lines{"E sqlite3_open failed: [14]", "W db initialize fail!"}));
    EXPECT_EQ(db.insertPolicy(account(1)), -1001);
    EXPECT_TRUE(fs::is_symlink(file()));
}

TEST_F(HostileStoreTest, LinkToItselfIsKept) {
    fs::create_symlink(".tesk.db", file());

    TeskConsumerDbMgr db;

    EXPECT_EQ(journal.warnings(), (Lines{"E sqlite3_open failed: [14]", "W db initialize fail!"}));
    EXPECT_EQ(db.insertPolicy(account(1)), -1001);
    EXPECT_TRUE(fs::is_symlink(file()));
}

TEST_F(HostileStoreTest, FileCutAtAnyLengthIsReadAndNotChanged) {
    const auto sound = soundBytes();
    const auto lastPage = sound.size() - pageSize;
    ASSERT_GT(lastPage, 2 * pageSize);

    for (std::size_t length = 0; length < sound.size(); length += 251) {
        SCOPED_TRACE("cut to " + std::to_string(length) + " bytes");
        const auto cut = sound.substr(0, length);
        writeBytes(file(), cut);
        journal.clear();
        TeskConsumerDbMgr db;

        read(db);

        EXPECT_EQ(bytesOf(file()), cut);
        // what is missing of the last page alone counts as zeros
        EXPECT_TRUE(length > lastPage || !journal.warnings().empty()) << "the log says nothing";
    }
}

TEST_F(HostileStoreTest, RandomBytesAreReadAndNotChanged) {
    const auto sound = soundBytes();
    std::mt19937 random(1);

    for (int round = 0; round < 500; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const auto broken = withRandomBytes(sound, random);
        writeBytes(file(), broken);
        TeskConsumerDbMgr db;

        read(db);

        EXPECT_EQ(bytesOf(file()), broken);
    }
}

TEST_F(HostileStoreTest, ChangeThatADamagedFileRefusesLeavesItAsItIs) {
    const auto sound = soundBytes();
    std::mt19937 random(2);
    int refused = 0;

    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        const auto broken = round % 2 == 0 ? sound.substr(0, random() % sound.size()) : withRandomBytes(sound, random);
        writeBytes(file(), broken);
        TeskConsumerDbMgr db;

        if (!change(db)) {
            ++refused;
            EXPECT_EQ(bytesOf(file()), broken);
        }
    }
    EXPECT_GT(refused, 10);
}

TEST_F(HostileStoreTest, FileWithoutItsHeaderIsNoDatabaseAndStaysAsItIs) {
    auto broken = soundBytes();
    std::fill_n(broken.begin(), 16, 'x');
    writeBytes(file(), broken);
    TeskConsumerDbMgr db;

    read(db);
    EXPECT_FALSE(change(db));

    EXPECT_TRUE(isLogged("file is not a database"));
    EXPECT_EQ(bytesOf(file()), broken);
}

TEST_F(HostileStoreTest, EmptyFileIsNotGivenATable) {
    writeBytes(file(), "");
    TeskConsumerDbMgr db;

    read(db);
    EXPECT_FALSE(change(db));

    EXPECT_TRUE(isLogged("no such table: eas_policy_tbl"));
    EXPECT_EQ(bytesOf(file()), "");
}

TEST_F(HostileStoreTest, MissingColumnsReadAsZeroAndRefuseChanges) {
    leaveDatabase("create table eas_policy_tbl (account_id integer primary key, device_password_enabled integer);"
                  "insert into eas_policy_tbl values (7, 1)");
    const auto before = bytesOf(file());
    TeskConsumerDbMgr db;
    TeskPolicyData data;

    EXPECT_EQ(db.getPolicyDataByAccountId(7, data), 0);

    EXPECT_EQ(data.devicePasswordEnabled, 1);
    EXPECT_EQ(data.minDevicePasswordLength, 0);
    EXPECT_EQ(data.displayName, "");
    EXPECT_EQ(db.insertPolicy(account(1)), -1001);
    EXPECT_EQ(db.updatePolicy(account(7)), -1001);
    EXPECT_TRUE(isLogged("no such column: allow_simple_password"));
    EXPECT_EQ(bytesOf(file()), before);
}

TEST_F(HostileStoreTest, ViewOfThatNameIsReadAndRefusesChanges) {
    leaveDatabase(TeskPolicyTable::createSql() + "alter table eas_policy_tbl rename to accounts;"
                                                 "insert into accounts (account_id) values (7);"
                                                 "create view eas_policy_tbl as select * from accounts");
    const auto before = bytesOf(file());
    TeskConsumerDbMgr db;

    EXPECT_EQ(db.checkPolicyByAccountId(7), 0);
    EXPECT_FALSE(change(db));

    EXPECT_TRUE(isLogged("cannot modify eas_policy_tbl because it is a view"));
    EXPECT_EQ(bytesOf(file()), before);
}

TEST_F(HostileStoreTest, ValuesOfOtherKindsReadAsNumbersAndTexts) {
    leaveDatabase(TeskPolicyTable::createSql() +
                  "insert into eas_policy_tbl (account_id, device_password_enabled, min_device_password_length,"
                  " device_password_history, allow_wifi, account_name, display_name)"
                  " values (7, 'yes', '6 or more', 3.9, x'31', null, 12)");
    TeskConsumerDbMgr db;
    TeskPolicyData data;

    EXPECT_EQ(db.getPolicyDataByAccountId(7, data), 0);

    EXPECT_EQ(data.devicePasswordEnabled, 0);
    EXPECT_EQ(data.minDevicePasswordLength, 6);
    EXPECT_EQ(data.devicePasswordHistory, 3);
    EXPECT_EQ(data.allowWifi, 1);
    EXPECT_EQ(data.accountName, "");
    EXPECT_EQ(data.displayName, "12");
}

TEST_F(HostileStoreTest, AccountsOfImpossibleIdsAreListedAndCounted) {
    leaveDatabase(TeskPolicyTable::createSql() + "insert into eas_policy_tbl (account_id) values"
                                                 " (-9223372036854775808), (-7), (0), (2147483648),"
                                                 " (9223372036854775807)");
    TeskConsumerDbMgr db;
    TeskPolicyDataList list;
    int count = 0;

    EXPECT_EQ(db.getPolicyDataList(list), 0);
    EXPECT_EQ(db.getAllEasAccountCount(&count), 0);

    EXPECT_EQ(list.size(), 5U);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(db.insertPolicy(account(1)), 0);
    EXPECT_EQ(db.checkPolicyByAccountId(1), 0);
}

TEST_F(HostileStoreTest, ReadOnlyFileIsReadAndRefusesChanges) {
    const auto before = soundBytes();
    ASSERT_EQ(chmod(file().c_str(), 0444), 0);
    const AnyUser restrained(folder().parent_path());
    TeskConsumerDbMgr db;

    read(db);
    EXPECT_EQ(db.checkPolicyByAccountId(7), 0);
    EXPECT_FALSE(change(db));

    EXPECT_TRUE(isLogged("attempt to write a readonly database"));
    EXPECT_EQ(bytesOf(file()), before);
}

TEST_F(HostileStoreTest, FileThatNobodyMayReadIsKept) {
    const auto before = soundBytes();
    ASSERT_EQ(chmod(file().c_str(), 0), 0);
    useInVainAsAnyUser();
    EXPECT_EQ(journal.warnings().front(), "E sqlite3_open failed: [14]");
    ASSERT_EQ(chmod(file().c_str(), 0600), 0);
    EXPECT_EQ(bytesOf(file()), before);
}

TEST_F(HostileStoreTest, FileInAFolderThatNobodyMayEnterIsKept) {
    const auto before = soundBytes();
    ASSERT_EQ(chmod(folder().c_str(), 0), 0);
    useInVainAsAnyUser();
    EXPECT_TRUE(isLogged("sqlite3_open failed: [14]"));
    ASSERT_EQ(chmod(folder().c_str(), 0755), 0);
    EXPECT_EQ(bytesOf(file()), before);
}

TEST_F(HostileStoreTest, JournalOfNothingIsIgnored) {
    const auto before = soundBytes();
    writeBytes(journalOf(file()), std::string(3000, 'x'));
    TeskConsumerDbMgr db;

    read(db);
    EXPECT_TRUE(change(db));

    EXPECT_EQ(journal.warnings(), Lines{});
    EXPECT_FALSE(fs::exists(journalOf(file())));
    EXPECT_EQ(db.checkPolicyByAccountId(20), 0);
}

TEST_F(HostileStoreTest, PipeInTheFilesPlaceIsNoDatabase) {
    ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
    TeskConsumerDbMgr db;

    read(db);
    EXPECT_FALSE(change(db));

    EXPECT_NE(journal.warnings(), Lines{});
    EXPECT_TRUE(fs::is_fifo(file()));
}

} // namespace
