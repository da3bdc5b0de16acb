#ifndef OTHER_PROGRAM_H
#define OTHER_PROGRAM_H

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>
#include <vector>

/// Another program's connection to a database.
class OtherProgram {
public:
    explicit OtherProgram(const std::string& path) { EXPECT_EQ(sqlite3_open(path.c_str(), &database_), SQLITE_OK); }
    ~OtherProgram() { sqlite3_close(database_); }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    void run(const std::string& sql) {
        EXPECT_EQ(sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK) << sql;
    }

    using Row = std::vector<std::string>;

    /// The values of all rows; "NULL" for a value that is absent.
    std::vector<Row> rows(const std::string& sql) {
        std::vector<Row> rows;
        const auto addRow = [](void* all, int count, char** texts, char** /*names*/) {
            auto& row = static_cast<std::vector<Row>*>(all)->emplace_back();
            for (int i = 0; i < count; ++i) {
                row.emplace_back(texts[i] != nullptr ? texts[i] : "NULL");
            }
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(database_, sql.c_str(), addRow, &rows, nullptr), SQLITE_OK) << sql;
        return rows;
    }

private:
    sqlite3* database_ = nullptr;
};

#endif
