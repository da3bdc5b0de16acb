#ifndef DESKWATCH_POLICY_DATABASE_H
#define DESKWATCH_POLICY_DATABASE_H

#include <filesystem>
#include <vector>

#include "session/value.h"

namespace deskwatch {

/// Reads the accounts that the service has stored, without changing their file; none when there is no file yet. Throws
/// std::runtime_error when it cannot be read.
std::vector<StoredAccount> readStoredAccounts(const std::filesystem::path& file);

} // namespace deskwatch

#endif
