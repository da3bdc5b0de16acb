#include "database_file.h"

#include <sqlite3.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace harness {

namespace {

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

void require(bool works, const std::string& reason) {
    if (!works) {
        throw std::runtime_error("the database is not sound: " + reason);
    }
}

class Database {
public:
    explicit Database(const std::string& path) {
        const int result = sqlite3_open_v2(path.c_str(), &database_, SQLITE_OPEN_READWRITE, nullptr);
        require(result == SQLITE_OK, "it cannot be opened");
    }
    ~Database() { sqlite3_close_v2(database_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void execute(const std::string& sql, RowReader reader = nullptr, void* result = nullptr) const {
        const int code = sqlite3_exec(database_, sql.c_str(), reader, result, nullptr);
        require(code == SQLITE_OK, sqlite3_errmsg(database_));
    }

private:
    sqlite3* database_ = nullptr;
};

} // namespace

StoredRows storedRows(const std::string& path) {
    StoredRows rows;
    if (!std::filesystem::exists(path)) {
        return rows;
    }
    const Database database(path);
    std::string verdict;
    database.execute("PRAGMA integrity_check", appendText, &verdict);
    require(verdict == "ok", verdict);
    database.execute("select * from eas_policy_tbl;", addRow, &rows);
    return rows;
}

void changeDatabase(const std::string& path, const std::string& statements) {
    Database(path).execute(statements);
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
