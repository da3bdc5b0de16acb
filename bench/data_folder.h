#ifndef BENCH_DATA_FOLDER_H
#define BENCH_DATA_FOLDER_H

#include <filesystem>
#include <string>

namespace bench {

/// A temporary folder for a database, as the service's data folder would be.
class DataFolder {
public:
    DataFolder();
    ~DataFolder();
    DataFolder(const DataFolder&) = delete;
    DataFolder& operator=(const DataFolder&) = delete;

    /// Ends with a slash.
    std::string path() const { return folder_.string() + "/"; }

    /// Where the service keeps its database in that folder.
    std::string database() const { return path() + "dbspace/.tesk.db"; }

    /// Makes the database, with the accounts 1 to `accounts`, which differ from each other. Throws std::runtime_error.
    void fill(int accounts) const;

private:
    void writeAccounts(int accounts) const;

    std::filesystem::path folder_;
};

} // namespace bench

#endif
