#ifndef DESKWATCH_POLICY_DATABASE_H
#define DESKWATCH_POLICY_DATABASE_H

#include <filesystem>
#include <vector>

#include "device/device_layout.h"
#include "session/value.h"

namespace deskwatch {

/// The file in which the service of a watch stores accounts.
std::filesystem::path policyDatabase(const DeviceLayout& layout);

/// Reads the accounts that the service has stored, without changing their file; none when there is no file yet. Throws
/// std::runtime_error when it cannot be read.
std::vector<StoredAccount> readStoredAccounts(const std::filesystem::path& file);

/// Copies the stored accounts to another file, which a service may have open, without changing the first. Nothing is
/// copied when there is no file yet. Throws std::runtime_error when the accounts cannot be copied.
void copyStoredAccounts(const std::filesystem::path& file, const std::filesystem::path& copy);

} // namespace deskwatch

#endif
