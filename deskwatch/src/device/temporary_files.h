#ifndef DESKWATCH_TEMPORARY_FILES_H
#define DESKWATCH_TEMPORARY_FILES_H

#include <filesystem>

namespace deskwatch {

/// Makes a folder of this user alone for a watch that does not last: in the folder that TMPDIR names; without one in
/// memory when there is room, since a watch writes its small files to the disk hundreds of times. Throws
/// std::system_error when the folder cannot be made.
std::filesystem::path makeTemporaryFolder();

} // namespace deskwatch

#endif
