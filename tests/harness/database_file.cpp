#include "database_file.h"

#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace harness {

namespace {

using Database = std::unique_ptr<sqlite3, decltype(&sqlite3_close_v2)>;
using RowReader = int (*)(void*, int, char**, char**);

int addRow(void* rows, int columns, char** values, char** /*names*/) {
    std::string text;
    for (int column = 0; column < columns; ++column) {
        text.append(values[column] != nullptr ? values[column] : "NULL").append("|");
    }
    (*static_cast<StoredRows*>(rows))[std::stoi(text)] = text;
    return 0;
}

int appendText(void* text, int /*columns*/, char** values, char** /*names*/) {
    *static_cast<std::string*>(text) += values[0];
    return 0;
}

void requireSound(bool holds, const std::string& reason) {
    if (!holds) {
        throw std::runtime_error("the database is not sound: " + reason);
    }
}

void execute(sqlite3* database, const char* sql, RowReader reader, void* result) {
    const int code = sqlite3_exec(database, sql, reader, result, nullptr);
    requireSound(code == SQLITE_OK, sqlite3_errmsg(database));
}

} // namespace

StoredRows storedRows(const std::string& path) {
    StoredRows rows;
    if (!std::filesystem::exists(path)) {
        return rows;
    }
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READWRITE, nullptr);
    const Database database(opened, &sqlite3_close_v2);
    requireSound(result == SQLITE_OK, "cannot be opened");
    std::string verdict;
    execute(opened, "PRAGMA integrity_check", appendText, &verdict);
    requireSound(verdict == "ok", verdict);
    execute(opened, "select * from eas_policy_tbl;", addRow, &rows);
    return rows;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeDatabase(const std::string& path, const std::string& content) {
    std::filesystem::create_directory(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
    std::filesystem::permissions(path, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

} // namespace harness
