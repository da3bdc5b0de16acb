#ifndef BENCH_DATABASE_H
#define BENCH_DATABASE_H

#include <sqlite3.h>

#include <memory>
#include <string>

namespace bench {

struct DatabaseCloser {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
struct StatementFinalizer {
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using Database = std::unique_ptr<sqlite3, DatabaseCloser>;
using Statement = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

/// Opens or makes a database. Throws std::runtime_error.
Database open(const std::string& path);

/// Throws std::runtime_error when the text is wrong.
Statement prepare(const Database& database, const std::string& sql);

/// Runs a statement that gives no rows, and makes it ready to run again. Throws std::runtime_error.
void run(const Statement& statement);

} // namespace bench

#endif
