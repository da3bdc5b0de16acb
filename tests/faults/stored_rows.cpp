#include "stored_rows.h"

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

namespace {

int addRow(void* rows, int columns, char** values, char** /*names*/) {
    std::string text;
    for (int column = 0; column < columns; ++column) {
        text.append(values[column] != nullptr ? values[column] : "NULL").append("|");
    }
    (*static_cast<StoredRows*>(rows))[std::stoi(text)] = text;
    return 0;
}

} // namespace

StoredRows storedRowsOf(const std::string& path) {
    StoredRows rows;
    if (!std::filesystem::exists(path)) {
        return rows;
    }
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(path.c_str(), &opened);
    const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, &sqlite3_close);
    char* message = nullptr;
    if (result != SQLITE_OK ||
        sqlite3_exec(opened, "select * from eas_policy_tbl;", addRow, &rows, &message) != SQLITE_OK) {
        const std::string reason = message != nullptr ? message : sqlite3_errmsg(opened);
        sqlite3_free(message);
        throw std::runtime_error("the rows cannot be read: " + reason);
    }
    return rows;
}
