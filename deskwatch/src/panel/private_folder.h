#ifndef DESKWATCH_PRIVATE_FOLDER_H
#define DESKWATCH_PRIVATE_FOLDER_H

#include <filesystem>

namespace deskwatch {

/// A folder that only this user can read, as long as this object lives.
class PrivateFolder {
public:
    /// Throws std::runtime_error when it cannot be made.
    PrivateFolder();
    ~PrivateFolder();
    PrivateFolder(const PrivateFolder&) = delete;
    PrivateFolder& operator=(const PrivateFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace deskwatch

#endif
