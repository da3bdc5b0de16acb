#include "app_common.h"

#include <sys/stat.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "environment.h"
#include "guard.h"
#include "text.h"

using host::Environment;
using host::guarded;
using host::HostError;

namespace {

// The data of an application belongs to its user alone, whatever the umask.
void makeFolder(const std::filesystem::path& folder) {
    if (std::filesystem::is_directory(folder)) {
        return;
    }
    makeFolder(folder.parent_path());
    constexpr mode_t ownerOnly = 0700;
    if (mkdir(folder.c_str(), ownerOnly) != 0 && errno != EEXIST) {
        throw HostError("cannot make the folder " + folder.string() + ": " + std::system_category().message(errno));
    }
}

} // namespace

char* app_get_data_path(void) {
    return guarded<char*>(__func__, nullptr, [] {
        const Environment& environment = Environment::get();
        const auto folder = environment.device() / "apps" / environment.applicationId() / "data";
        makeFolder(folder);
        return host::copyForCaller(folder.string() + "/");
    });
}

int app_get_id(char** id) {
    if (id == nullptr) {
        return -EINVAL;
    }
    return guarded(__func__, -EINVAL, [&] {
        *id = host::copyForCaller(Environment::get().applicationId());
        return 0;
    });
}
