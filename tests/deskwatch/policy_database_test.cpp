#include "records/policy_database.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "temporary_folder.h"

namespace deskwatch {
namespace {

void execute(const std::filesystem::path& file, const std::string& sql) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
    sqlite3_close(database);
}

TEST(PolicyDatabase, FileThatDoesNotExistYetHoldsNoAccounts) {
    EXPECT_TRUE(readStoredAccounts("/nowhere/.tesk.db").empty());
}

TEST(PolicyDatabase, RowsComeByAccountWithTheirColumnNames) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "a b?c#d.db";
    execute(file, "create table eas_policy_tbl (account_id integer, account_name text);"
                  "insert into eas_policy_tbl values (7, 'seven'), (3, null);");

    const auto accounts = readStoredAccounts(file);

    ASSERT_EQ(accounts.size(), 2U);
    EXPECT_EQ(accounts[0][0].name, "account_id");
    EXPECT_EQ(accounts[0][0].value, Value(3));
    EXPECT_EQ(accounts[0][1].value, Value());
    EXPECT_EQ(accounts[1][1].name, "account_name");
    EXPECT_EQ(accounts[1][1].value, Value("seven"));
}

TEST(PolicyDatabase, FileThatIsNoDatabaseIsNamed) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "text.db";
    std::ofstream(file) << std::string(4096, 'x');
    try {
        readStoredAccounts(file);
        FAIL() << "it was read";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()), "cannot read " + file.string() + ": file is not a database");
    }
}

} // namespace
} // namespace deskwatch
