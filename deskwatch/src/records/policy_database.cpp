#include "records/policy_database.h"

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

#include "device/application_ids.h"

namespace deskwatch {
namespace {

/// The columns after these are reserved and always empty.
constexpr int shownColumns = 24;

/// The service writes within a fraction of a second.
constexpr int busyMilliseconds = 5'000;

struct DatabaseClose {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

struct StatementFinalize {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using Database = std::unique_ptr<sqlite3, DatabaseClose>;
using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalize>;

[[noreturn]] void fail(const std::filesystem::path& file, const Database& database) {
    throw std::runtime_error("cannot read " + file.string() + ": " + sqlite3_errmsg(database.get()));
}

Database openDatabase(const std::filesystem::path& file, int flags) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &opened, flags, nullptr);
    Database database(opened);
    if (result != SQLITE_OK) {
        fail(file, database);
    }
    sqlite3_busy_timeout(database.get(), busyMilliseconds);
    return database;
}

Value valueAt(sqlite3_stmt* row, int column) {
    switch (sqlite3_column_type(row, column)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return sqlite3_column_int(row, column);
    default:
        const auto* text = sqlite3_column_text(row, column);
        const auto length = static_cast<std::size_t>(sqlite3_column_bytes(row, column));
        return std::string(text, text + length);
    }
}

StoredAccount readAccount(sqlite3_stmt* row) {
    StoredAccount account;
    for (int column = 0; column < std::min(shownColumns, sqlite3_column_count(row)); ++column) {
        account.push_back({sqlite3_column_name(row, column), valueAt(row, column)});
    }
    return account;
}

} // namespace

std::filesystem::path policyDatabase(const DeviceLayout& layout) {
    return layout.applicationData(ids::service) / "dbspace" / ".tesk.db";
}

void copyStoredAccounts(const std::filesystem::path& file, const std::filesystem::path& copy) {
    if (!std::filesystem::exists(file)) {
        return;
    }
    std::filesystem::create_directories(copy.parent_path());
    const Database from = openDatabase(file, SQLITE_OPEN_READONLY);
    const Database to = openDatabase(copy, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    sqlite3_backup* backup = sqlite3_backup_init(to.get(), "main", from.get(), "main");
    const int step = backup != nullptr ? sqlite3_backup_step(backup, -1) : sqlite3_errcode(to.get());
    sqlite3_backup_finish(backup);
    if (step != SQLITE_DONE) {
        throw std::runtime_error("cannot copy " + file.string() + ": " + sqlite3_errstr(step));
    }
}

std::vector<StoredAccount> readStoredAccounts(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file)) {
        return {};
    }
    const Database database = openDatabase(file, SQLITE_OPEN_READONLY);
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(database.get(), "select * from eas_policy_tbl order by account_id", -1, &prepared,
                           nullptr) != SQLITE_OK) {
        fail(file, database);
    }
    const Statement statement(prepared);
    std::vector<StoredAccount> accounts;
    int step = SQLITE_DONE;
    while ((step = sqlite3_step(statement.get())) == SQLITE_ROW) {
        accounts.push_back(readAccount(statement.get()));
    }
    if (step != SQLITE_DONE) {
        fail(file, database);
    }
    return accounts;
}

} // namespace deskwatch
