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

/// What the Status of a command, and that of a policy, means, for somebody who only reads it.
std::string statusMeaning(int status);
std::string policyStatusMeaning(int status);

/// Whether a Status, or an HTTP status, asks for a new handshake.
bool asksForHandshake(int httpStatus, int status);

} // namespace deskwatch

#endif
