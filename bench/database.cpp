#include "database.h"

#include <stdexcept>

bench::Database bench::open(const std::string& path) {
    // as the service has it, which is the least: no statistics of memory, no lock for threads that share a connection
    sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    sqlite3_config(SQLITE_CONFIG_MULTITHREAD);
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(path.c_str(), &opened);
    Database database(opened);
    if (result != SQLITE_OK) {
        throw std::runtime_error("bench: cannot open " + path + ": " + sqlite3_errstr(result));
    }
    return database;
}

bench::Statement bench::prepare(const Database& database, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(database.get(), sql.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
        throw std::runtime_error("bench: " + sql + ": " + sqlite3_errmsg(database.get()));
    }
    return Statement(statement);
}

void bench::run(const Statement& statement) {
    const int result = sqlite3_step(statement.get());
    if (result != SQLITE_DONE) {
        throw std::runtime_error(std::string("bench: ") + sqlite3_sql(statement.get()) + ": " + sqlite3_errstr(result));
    }
    sqlite3_reset(statement.get());
}
