#include "recording/recorded_store.h"

#include <glib.h>
#include <sqlite3.h>

#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>

#include "c_owners.h"
#include "recording/recorded_text.h"

namespace deskwatch {
namespace {

using Json = nlohmann::ordered_json;
using Database = c::Owner<sqlite3, sqlite3_close>;
using Statement = c::Owner<sqlite3_stmt, sqlite3_finalize>;

constexpr int busyMilliseconds = 5'000;

Database openStore(const std::filesystem::path& file, int flags) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(file.c_str(), &opened, flags, nullptr);
    Database database(opened);
    if (result != SQLITE_OK) {
        throw std::runtime_error("cannot open " + file.string() + ": " + sqlite3_errstr(result));
    }
    sqlite3_busy_timeout(database.get(), busyMilliseconds);
    return database;
}

/// Null when the text is not a statement that this database knows.
Statement prepare(const Database& database, const std::string& sql) {
    sqlite3_stmt* prepared = nullptr;
    sqlite3_prepare_v2(database.get(), sql.c_str(), static_cast<int>(sql.size()), &prepared, nullptr);
    return Statement(prepared);
}

std::string textAt(sqlite3_stmt* row, int column) {
    const auto* text = sqlite3_column_text(row, column);
    return {text, text + sqlite3_column_bytes(row, column)};
}

/// None when a value has a type that no account has.
std::optional<Json> accountOf(sqlite3_stmt* row) {
    Json account = Json::object();
    for (int column = 0; column < sqlite3_column_count(row); ++column) {
        const int type = sqlite3_column_type(row, column);
        if (type == SQLITE_INTEGER) {
            account[sqlite3_column_name(row, column)] = sqlite3_column_int64(row, column);
        } else if (type == SQLITE_TEXT) {
            account[sqlite3_column_name(row, column)] = recordedText(textAt(row, column));
        } else if (type != SQLITE_NULL) {
            return std::nullopt;
        }
    }
    return account;
}

/// None when the file holds something else than the table of accounts.
std::optional<Json> recordedTable(const Database& database) {
    const auto tables = prepare(database, "select name, sql from sqlite_master where sql is not null");
    if (tables == nullptr || sqlite3_step(tables.get()) != SQLITE_ROW || textAt(tables.get(), 0) != "eas_policy_tbl") {
        return std::nullopt;
    }
    Json store{{"table", textAt(tables.get(), 1)}, {"accounts", Json::array()}};
    const bool isAlone = sqlite3_step(tables.get()) == SQLITE_DONE;
    const auto rows = prepare(database, "select * from eas_policy_tbl");
    int step = isAlone && rows != nullptr ? SQLITE_ROW : SQLITE_ERROR;
    while (step == SQLITE_ROW && (step = sqlite3_step(rows.get())) == SQLITE_ROW) {
        auto account = accountOf(rows.get());
        step = account ? SQLITE_ROW : SQLITE_ERROR;
        store["accounts"].push_back(account ? std::move(*account) : Json());
    }
    return step == SQLITE_DONE ? std::optional(std::move(store)) : std::nullopt;
}

Json recordedBytes(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(stream), {});
    if (!stream.is_open()) {
        throw std::runtime_error("cannot read " + file.string());
    }
    const c::MemoryOwner<char> text(g_base64_encode(reinterpret_cast<const guchar*>(bytes.data()), bytes.size()));
    return {{"bytes", text.get()}};
}

void writeBytes(const std::string& base64, const std::filesystem::path& file) {
    gsize size = 0;
    const c::MemoryOwner<guchar> bytes(g_base64_decode(base64.c_str(), &size));
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.get()), static_cast<std::streamsize>(size));
}

void run(const Database& database, const Statement& statement) {
    if (statement == nullptr || sqlite3_step(statement.get()) != SQLITE_DONE) {
        throw std::runtime_error(std::string("the recorded store cannot be made: ") + sqlite3_errmsg(database.get()));
    }
}

void insert(const Database& database, const Json& account) {
    std::string columns;
    std::string places;
    for (const auto& [column, value] : account.items()) {
        const c::Owner<char, sqlite3_free> name(sqlite3_mprintf("%w", column.c_str()));
        columns += (columns.empty() ? "\"" : ",\"") + std::string(name.get()) + "\"";
        places += places.empty() ? "?" : ",?";
    }
    const auto statement = prepare(database, "insert into eas_policy_tbl (" + columns + ") values (" + places + ")");
    int place = 0;
    for (const auto& value : account) {
        ++place;
        if (value.is_string() && statement != nullptr) {
            const auto text = textOfRecorded(value.get<std::string>());
            sqlite3_bind_text(statement.get(), place, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
        } else if (statement != nullptr) {
            sqlite3_bind_int64(statement.get(), place, value.get<std::int64_t>());
        }
    }
    run(database, statement);
}

} // namespace

nlohmann::ordered_json recordedStore(const std::filesystem::path& file) {
    if (!std::filesystem::exists(file)) {
        return nullptr;
    }
    std::optional<Json> table;
    {
        const auto database = openStore(file, SQLITE_OPEN_READONLY);
        table = recordedTable(database);
    }
    return table ? *table : recordedBytes(file);
}

void writeStore(const nlohmann::ordered_json& recorded, const std::filesystem::path& file) {
    if (recorded.is_null()) {
        return;
    }
    std::filesystem::create_directories(file.parent_path());
    if (recorded.contains("bytes")) {
        writeBytes(recorded.at("bytes").get<std::string>(), file);
        return;
    }
    const auto database = openStore(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
    sqlite3_limit(database.get(), SQLITE_LIMIT_ATTACHED, 0); // a recording may come from anywhere
    run(database, prepare(database, "begin"));
    run(database, prepare(database, "drop table if exists eas_policy_tbl"));
    run(database, prepare(database, recorded.at("table").get<std::string>()));
    for (const auto& account : recorded.at("accounts")) {
        insert(database, account);
    }
    run(database, prepare(database, "commit"));
}

} // namespace deskwatch
