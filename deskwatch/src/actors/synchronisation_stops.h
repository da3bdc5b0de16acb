#ifndef DESKWATCH_SYNCHRONISATION_STOPS_H
#define DESKWATCH_SYNCHRONISATION_STOPS_H

#include <filesystem>

namespace deskwatch {

/// The request by which the service tells the mail application that the wearer stops synchronising.
inline constexpr char stopSynchronising[] = "req_disable_password_eas_accounts";

// The mail application counts these requests in a file in the folder of its data, so that they are known after it has
// ended.

/// How many there were.
int synchronisationStops(const std::filesystem::path& data);

/// Counts one more. A file that cannot be written stays as it is.
void countSynchronisationStop(const std::filesystem::path& data);

} // namespace deskwatch

#endif
