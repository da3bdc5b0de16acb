#include "device/temporary_files.h"

#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace deskwatch {
namespace {

namespace fs = std::filesystem;

constexpr char memory[] = "/dev/shm";

/// Some hundred watches. A container's share may be smaller.
constexpr auto enoughRoom = 256ULL * 1024 * 1024;

bool hasRoomInMemory() {
    struct statfs status {};
    return statfs(memory, &status) == 0 && status.f_type == TMPFS_MAGIC &&
           static_cast<unsigned long long>(status.f_bavail) * static_cast<unsigned long long>(status.f_bsize) >=
               enoughRoom &&
           access(memory, W_OK | X_OK) == 0;
}

} // namespace

fs::path makeTemporaryFolder() {
    const bool isPlaceNamed = std::getenv("TMPDIR") != nullptr;
    const fs::path place = !isPlaceNamed && hasRoomInMemory() ? fs::path(memory) : fs::temp_directory_path();
    std::string path = (place / "deskwatch-XXXXXX").string();
    if (mkdtemp(path.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make a folder " + path);
    }
    return path;
}

} // namespace deskwatch
