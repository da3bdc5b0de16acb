#ifndef DESKWATCH_PANEL_SECRETS_H
#define DESKWATCH_PANEL_SECRETS_H

#include <string>

namespace deskwatch {

/// A text that nobody can guess: 32 random bytes as hexadecimal digits. Throws std::system_error when the machine has
/// no randomness to give.
std::string randomText();

/// What a browser must know to see and to act. All of it dies with the process.
struct PanelSecrets {
    /// In the address that is printed.
    std::string token = randomText();
    /// The first part of the path of every page. A cookie is kept to its path but not to its port, so that the path
    /// keeps it from other servers of this machine.
    std::string folder = randomText();
    std::string cookie = randomText();
};

/// Whether two texts are equal, in a time that does not tell where they differ.
bool isSameSecret(const std::string& given, const std::string& secret);

} // namespace deskwatch

#endif
