#ifndef PLATFORM_DPM_WIPE_H
#define PLATFORM_DPM_WIPE_H

#include <filesystem>

namespace host::dpm {

/// Removes all that is in the device's folder storage/<name>, and keeps the folder. Symbolic links in it are removed,
/// never followed; a storage folder that is a link, or lies outside the device's folder, is refused. A storage that is
/// not there is empty. Throws HostError, after having removed what it could.
void wipeStorage(const std::filesystem::path& device, const char* name);

} // namespace host::dpm

#endif
