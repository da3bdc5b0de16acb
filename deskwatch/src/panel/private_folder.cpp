#include "panel/private_folder.h"

#include <stdexcept>

#include "c_owners.h"

namespace deskwatch {

PrivateFolder::PrivateFolder() {
    GError* error = nullptr;
    const c::MemoryOwner<char> path(g_dir_make_tmp("deskwatch-panel-XXXXXX", &error));
    if (path == nullptr) {
        throw std::runtime_error("cannot make a folder for the panel: " + c::takeMessage(error));
    }
    path_ = path.get();
}

PrivateFolder::~PrivateFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

} // namespace deskwatch
