#include "data_folder.h"

#include <cstdlib>
#include <stdexcept>

#include "database.h"
#include "rules/TeskPolicyTable.h"

namespace {

/// Accounts that differ, so that every rule of the merge has something to do.
int valueOf(std::size_t column, int account) {
    constexpr int values = 12;
    return column == 0 ? account : (account + static_cast<int>(column)) % values;
}

void bindAccount(sqlite3_stmt* insert, int account) {
    int parameter = 1;
    for (std::size_t column = 0; column < TeskPolicyTable::numbers.size(); ++column) {
        sqlite3_bind_int(insert, parameter++, valueOf(column, account));
    }
    const std::string name = "account" + std::to_string(account) + "@exchange.example";
    for (std::size_t text = 0; text < TeskPolicyTable::texts.size(); ++text) {
        sqlite3_bind_text(insert, parameter++, name.c_str(), -1, SQLITE_TRANSIENT);
    }
}

} // namespace

bench::DataFolder::DataFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "tesk-bench.XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("bench: cannot make a folder like " + name);
    }
    folder_ = name;
    std::filesystem::create_directory(folder_ / "dbspace");
}

bench::DataFolder::~DataFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void bench::DataFolder::fill(int accounts) const {
    writeAccounts(accounts);
    sqlite3_shutdown(); // whoever opens the database next finds SQLite as a new process does
}

void bench::DataFolder::writeAccounts(int accounts) const {
    const Database database = open(this->database());
    run(prepare(database, TeskPolicyTable::createSql()));
    run(prepare(database, "begin"));
    const Statement insert = prepare(database, TeskPolicyTable::insertSql());
    for (int account = 1; account <= accounts; ++account) {
        bindAccount(insert.get(), account);
        run(insert);
    }
    run(prepare(database, "commit"));
}
