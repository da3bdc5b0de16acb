#ifndef DESKWATCH_RECORDED_STORE_H
#define DESKWATCH_RECORDED_STORE_H

#include <nlohmann/json.hpp>

#include <filesystem>

namespace deskwatch {

/// The service's stored accounts as a recording has them; null when there is no file:
///
///     {"table": SQL, "accounts": [{COLUMN: VALUE, ...}]}   a column without a value is left out
///     {"bytes": BASE64}                                     a file that holds anything else, such as a damaged one
///
/// Does not change the file. Throws std::runtime_error when it cannot be read.
nlohmann::ordered_json recordedStore(const std::filesystem::path& file);

/// Makes the file hold what a recording means, also one that a service has open; null leaves it as it is. Throws
/// std::runtime_error when it is not a store.
void writeStore(const nlohmann::ordered_json& recorded, const std::filesystem::path& file);

} // namespace deskwatch

#endif
