#ifndef DESKWATCH_STATUS_WORDS_H
#define DESKWATCH_STATUS_WORDS_H

#include <string>

namespace deskwatch {

/// What an HTTP status means here, and what the user can do.
std::string httpWords(int status);

/// The same for the Status of a command.
std::string statusWords(int status);

/// The same for the Status of a policy.
std::string policyStatusWords(int status);

/// Whether a Status, or an HTTP status, asks for a new handshake.
bool asksForHandshake(int httpStatus, int status);

} // namespace deskwatch

#endif
