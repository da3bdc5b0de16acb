#ifndef DESKWATCH_TEMPORARY_FOLDER_H
#define DESKWATCH_TEMPORARY_FOLDER_H

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

/// An empty folder with a short path that goes, with all it holds, when this object does.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& parent = "/tmp") {
        std::string path = parent + "/desk-XXXXXX";
        if (mkdtemp(path.data()) == nullptr) {
            throw std::runtime_error("cannot make a temporary folder");
        }
        path_ = path;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

#endif
