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

    /// The values of the first row; "NULL" for a value that is absent.
    std::vector<std::string> firstRow(const std::string& sql) {
        std::vector<std::string> row;
        sqlite3_exec(
            database_, sql.c_str(),
            [](void* values, int count, char** texts, char**) {
                for (int i = 0; i < count; ++i) {
                    static_cast<std::vector<std::string>*>(values)->emplace_back(texts[i] != nullptr ? texts[i]
                                                                                                     : "NULL");
                }
                return 1;
            },
            &row, nullptr);
        return row;
    }

private:
    sqlite3* database_ = nullptr;
};

#endif
