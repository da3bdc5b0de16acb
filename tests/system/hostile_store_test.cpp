#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>

#include "device_state.h"
#include "file_bytes.h"
#include "messages.h"
#include "other_program.h"
#include "test_device.h"

namespace system_test {
namespace {

namespace fs = std::filesystem;

/// Something in the database's place that is no store of policies, and what the log says of it.
struct Damage {
    const char* name;
    std::function<void(const fs::path& database)> inflict;
    const char* complaint;
};

void PrintTo(const Damage& damage, std::ostream* output) {
    *output << damage.name;
}

constexpr std::size_t pageSize = 4096;

auto cutTo(std::size_t length) {
    return [length](const fs::path& database) { fs::resize_file(database, length); };
}

/// Puts bytes that look like nothing over the file's own.
auto overwrite(std::size_t from, std::size_t count) {
    return [=](const fs::path& database) {
        auto bytes = bytesOf(database);
        ASSERT_LE(from + count, bytes.size());
        for (auto i = from; i < from + count; ++i) {
            bytes[i] = static_cast<char>(i * 31 + 7);
        }
        writeBytes(database, bytes);
    };
}

auto replaceTable(const std::string& statements) {
    return [=](const fs::path& database) {
        OtherProgram(database).run("alter table eas_policy_tbl rename to accounts;" + statements);
    };
}

auto linkTo(const std::string& target) {
    return [=](const fs::path& database) {
        fs::remove(database);
        fs::create_symlink(target, database);
    };
}

constexpr char noTable[] = "no such table: eas_policy_tbl";
constexpr char noDatabase[] = "file is not a database";
constexpr char malformed[] = "database disk image is malformed";
constexpr char notOpened[] = "sqlite3_open failed: [14]";

std::vector<Damage> damages() {
    return {
        {"EmptyFile", cutTo(0), noTable},
        {"FileCutInItsHeader", cutTo(50), malformed},
        {"FileCutToItsFirstPage", cutTo(pageSize), malformed},
        {"FileWithoutItsHeader", overwrite(0, 100), noDatabase},
        {"FileOfRandomBytes", overwrite(0, 2 * pageSize), noDatabase},
        {"RandomBytesBehindTheHeader", overwrite(100, pageSize - 100), malformed},
        {"RandomBytesInTheTable", overwrite(pageSize, pageSize), malformed},
        {"TextInItsPlace", [](const fs::path& database) { writeBytes(database, "policies: none\n"); }, noDatabase},
        {"OtherTable", replaceTable(""), noTable},
        {"TableOfFewerColumns", replaceTable("create table eas_policy_tbl (account_id integer primary key)"),
         "has no column named device_password_enabled"},
        {"ViewOfThatName", replaceTable("create view eas_policy_tbl as select * from accounts"),
         "cannot modify eas_policy_tbl because it is a view"},
        {"DirectoryInItsPlace",
         [](const fs::path& database) {
             fs::remove(database);
             fs::create_directory(database);
         },
         notOpened},
        {"LinkToWhereNothingCanBeMade", linkTo("/nowhere/at/all"), notOpened},
        {"LinkToItself", linkTo(".tesk.db"), notOpened},
    };
}

/// What stands in the file's place, byte by byte.
std::string placeOf(const fs::path& database) {
    const auto status = fs::symlink_status(database);
    if (fs::is_symlink(status)) {
        return "link to " + fs::read_symlink(database).string();
    }
    return fs::is_directory(status) ? "directory" : bytesOf(database);
}

/// A watch whose service has stored accounts and has ended.
void storeAndEnd(const TestDevice& device, const std::vector<PolicyAccount>& accounts) {
    device.launchService();
    device.send("req_update_policy", policyUpdate(accounts));
    device.endService();
}

class DamagedStore : public testing::TestWithParam<Damage> {};

TEST_P(DamagedStore, IsReportedAndKeptWhileTheServiceGoesOn) {
    const TestDevice device;
    storeAndEnd(device, {alice(hardenedPolicy), bob(pinPolicy)});
    GetParam().inflict(device.database());
    const auto before = placeOf(device.database());

    device.launchService();
    const auto service = device.servicePid();
    device.send("req_update_policy", initResponse({carol(pinPolicy)}));
    device.send("req_delete_account", "3");
    setKey(keys::passwordApplied, 1); // before which encryption is no topic
    device.send("chk_device_encryption_policy", "");

    EXPECT_GE(device.log().count(GetParam().complaint), 1);
    EXPECT_EQ(device.companions().launches(ids::encryptionPopup).size(), 1U) << "it does not answer any more";
    EXPECT_EQ(device.servicePid(), service);
    EXPECT_TRUE(placeOf(device.database()) == before) << "what stood there has been changed";
}

INSTANTIATE_TEST_SUITE_P(, DamagedStore, testing::ValuesIn(damages()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(HostileStore, LinkToOtherStorageIsFollowedAndStays) {
    const TestDevice device;
    const auto other = device.layout().folder() / "other-storage";
    fs::create_directories(device.database().parent_path());
    fs::create_directory(other);
    fs::create_symlink(other / "policies", device.database());

    storeAndEnd(device, {alice(hardenedPolicy)});
    device.launchService();

    EXPECT_TRUE(fs::is_symlink(device.database()));
    EXPECT_EQ(storedAccounts(other / "policies"), std::vector<std::string>{"1"});
    EXPECT_EQ(device.log().count("Let's create db!"), 1);
}

/// Leaves the database and its journal as a writer does that is cut off in the middle of a large change.
void cutOffChange(const fs::path& database) {
    const fs::path changed = database.string() + ".changed";
    const fs::path journal = database.string() + "-journal";
    const fs::path journalCopy = changed.string() + "-journal";
    {
        OtherProgram writer(database);
        writer.run("pragma cache_size=1"); // so that pages are written before the end
        writer.run("begin; pragma user_version=7; delete from eas_policy_tbl where account_id=1;"
                   "with recursive n(i) as (select 100 union all select i+1 from n where i<200)"
                   " insert into eas_policy_tbl (account_id, account_name) select i, hex(randomblob(500)) from n");
        fs::copy_file(database, changed);
        fs::copy_file(journal, journalCopy);
        writer.run("rollback");
    }
    ASSERT_NE(bytesOf(changed), bytesOf(database));
    fs::rename(changed, database);
    fs::rename(journalCopy, journal);
}

TEST(HostileStore, ChangeThatWasCutOffIsRolledBackByTheStart) {
    const TestDevice device;
    storeAndEnd(device, {alice(hardenedPolicy), bob(pinPolicy)});
    const auto rows = storedRows(device.database());
    cutOffChange(device.database());

    device.launchService();

    EXPECT_FALSE(fs::exists(device.database().string() + "-journal"));
    EXPECT_EQ(storedRows(device.database()), rows);
    EXPECT_EQ(settings(), (Settings{128, 4, 10, 1, 900, 365, 4, 1, 1, 1, 1}));
    device.send("req_update_policy", policyUpdate({carol(pinPolicy)}));
    EXPECT_EQ(storedAccounts(device.database()), (std::vector<std::string>{"1", "2", "3"}));
}

TEST(HostileStore, JournalOfAnotherDatabaseDoesNotReachANewOne) {
    const TestDevice device;
    const auto other = device.layout().folder() / "other";
    OtherProgram(other).run("create table eas_policy_tbl (account_id integer primary key, account_name text)");
    cutOffChange(other);
    fs::create_directories(device.database().parent_path());
    fs::copy_file(other.string() + "-journal", device.database().string() + "-journal");

    storeAndEnd(device, {alice(hardenedPolicy)});
    device.launchService();

    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
    EXPECT_EQ(device.log().count("db failure"), 0);
}

TEST(HostileStore, OddValuesAreEnforcedAsNumbers) {
    const TestDevice device;
    storeAndEnd(device, {alice(hardenedPolicy), bob(pinPolicy)});
    OtherProgram(device.database())
        .run(
            "update eas_policy_tbl set min_device_password_length='8 or more', device_password_history='none',"
            " allow_wifi=null, account_name=null, display_name=x'ff00' where account_id=1;"
            "insert into eas_policy_tbl select -9223372036854775808, 1, 1, 0, 0, 9, 0, 0, 0, 0, 0, 0, 0, 2, 1, 1, 1, 1,"
            " 1, 1, 1, 1, null, null, null, null, null, null, null, null");

    device.launchService();

    EXPECT_EQ(settings(), (Settings{128, 9, 10, 1, 900, 365, 0, 0, 1, 1, 1}));
    device.send("req_delete_account", "1");
    EXPECT_EQ(storedAccounts(device.database()), (std::vector<std::string>{"-9223372036854775808", "2"}));
    EXPECT_EQ(settings().wifi, 1);
}

TEST(HostileStore, NameThatIsNoTextDoesNotEndTheService) {
    const TestDevice device;
    storeAndEnd(device, {alice(hardenedPolicy)});
    OtherProgram(device.database()).run("update eas_policy_tbl set account_name=cast(x'fffe41' as text)");

    device.launchService();
    device.send("chk_password_policy", "");

    EXPECT_EQ(settings().quality, 128);
    EXPECT_EQ(device.log().count("app_control_send_launch_request() failed"), 2);
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    EXPECT_EQ(device.companions().launches(ids::popup).back().extraData.at("ACCOUNT_NAME"), "alice@contoso.example");
}

/// What the service may take for 100,000 accounts, in KB.
#ifdef __SANITIZE_ADDRESS__
constexpr long mostMemory = 800'000; // the sanitizer keeps for a while what has been released
#else
constexpr long mostMemory = 100'000;
#endif

/// A figure of the process in KB, by its name in the kernel's status.
long memoryOf(pid_t process, const std::string& figure) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(figure + ":", 0) == 0) {
            return std::stol(line.substr(figure.size() + 1));
        }
    }
    ADD_FAILURE() << "no " << figure;
    return 0;
}

TEST(HostileStore, HundredThousandAccountsAreServedInBoundedMemory) {
    const TestDevice device;
    storeAndEnd(device, {alice(defaultPolicy)});
    OtherProgram(device.database())
        .run("begin; with recursive n(i) as (select 2 union all select i+1 from n where i<100000)"
             " insert into eas_policy_tbl select i, 1, 1, 0, 0, 4+(i=70000), 0, 0, 1, 0, 0, 0, 0, 2, 1, 1, 1, 1, 1, 1, "
             "1,"
             " 1, 'account' || i || '@contoso.example', 'Account', null, null, null, null, null, null from n; commit");

    device.launchService();
    const long behindTheStart = memoryOf(device.servicePid(), "VmRSS");
    EXPECT_EQ(settings().minLength, 5);
    device.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));
    EXPECT_EQ(settings().minLength, 16);
    device.send("req_delete_account", "1");
    EXPECT_EQ(settings().minLength, 5);

    const long peak = memoryOf(device.servicePid(), "VmHWM");
    std::cout << "100,000 accounts: " << behindTheStart << " KB behind the start, " << peak << " KB at most, "
              << memoryOf(device.servicePid(), "VmRSS") << " KB in the end\n";
    EXPECT_LT(peak, mostMemory);
    EXPECT_EQ(storedAccounts(device.database()).size(), 99'999U);
}

} // namespace
} // namespace system_test
