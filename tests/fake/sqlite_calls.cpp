#include <sqlite3.h>

#include "fake_platform.h"

using fake::FakePlatform;

extern "C" {

int __real_sqlite3_open(const char* path, sqlite3** database);
int __real_sqlite3_busy_handler(sqlite3* database, int (*handler)(void*, int), void* data);
int __real_sqlite3_prepare_v2(sqlite3* database, const char* sql, int size, sqlite3_stmt** statement,
                              const char** tail);
int __real_sqlite3_bind_int(sqlite3_stmt* statement, int parameter, int value);
int __real_sqlite3_bind_text(sqlite3_stmt* statement, int parameter, const char* text, int size,
                             void (*release)(void*));
int __real_sqlite3_step(sqlite3_stmt* statement);
int __real_sqlite3_finalize(sqlite3_stmt* statement);
int __real_sqlite3_close(sqlite3* database);

int __wrap_sqlite3_open(const char* path, sqlite3** database) {
    const auto fault = FakePlatform::current().call("sqlite3_open");
    return fault ? *fault : __real_sqlite3_open(path, database);
}

int __wrap_sqlite3_busy_handler(sqlite3* database, int (*handler)(void*, int), void* data) {
    const auto fault = FakePlatform::current().call("sqlite3_busy_handler");
    return fault ? *fault : __real_sqlite3_busy_handler(database, handler, data);
}

int __wrap_sqlite3_prepare_v2(sqlite3* database, const char* sql, int size, sqlite3_stmt** statement,
                              const char** tail) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("sqlite3_prepare_v2", sql)) {
        return *fault;
    }
    const int result = __real_sqlite3_prepare_v2(database, sql, size, statement, tail);
    platform.system.statements += result == SQLITE_OK && *statement != nullptr ? 1 : 0;
    return result;
}

int __wrap_sqlite3_bind_int(sqlite3_stmt* statement, int parameter, int value) {
    const auto fault = FakePlatform::current().faults.onCall("sqlite3_bind_int");
    return fault ? *fault : __real_sqlite3_bind_int(statement, parameter, value);
}

int __wrap_sqlite3_bind_text(sqlite3_stmt* statement, int parameter, const char* text, int size,
                             void (*release)(void*)) {
    const auto fault = FakePlatform::current().faults.onCall("sqlite3_bind_text");
    return fault ? *fault : __real_sqlite3_bind_text(statement, parameter, text, size, release);
}

int __wrap_sqlite3_step(sqlite3_stmt* statement) {
    auto& platform = FakePlatform::current();
    if (platform.journal.isKept) {
        platform.system.steps.emplace_back(sqlite3_sql(statement));
    }
    const auto fault = platform.faults.onCall("sqlite3_step");
    return fault ? *fault : __real_sqlite3_step(statement);
}

int __wrap_sqlite3_finalize(sqlite3_stmt* statement) {
    auto& platform = FakePlatform::current();
    platform.system.statements -= statement != nullptr ? 1 : 0;
    const int result = __real_sqlite3_finalize(statement);
    return platform.faults.onCall("sqlite3_finalize").value_or(result);
}

int __wrap_sqlite3_close(sqlite3* database) {
    FakePlatform::current().call("sqlite3_close");
    return __real_sqlite3_close(database);
}
}
