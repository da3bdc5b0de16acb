#ifndef DESKWATCH_PASSWORD_SOURCE_H
#define DESKWATCH_PASSWORD_SOURCE_H

#include <string>

namespace deskwatch {

/// Where a password comes from. It is never an argument, which everyone on the machine could read.
class PasswordSource {
public:
    /// With a file, its first line; `-` is standard input. Without one, the environment variable DESKWATCH_PASSWORD, or
    /// else the terminal. Keeps the process from leaving a core file, and the password from the programs it starts.
    explicit PasswordSource(const std::string& file);

    /// The password of an account, named for the reader at a terminal, who is asked for each account anew. Throws
    /// std::runtime_error when there is none, with the ways to give one.
    std::string passwordOf(const std::string& account);

    /// Whether every account gets its own.
    bool isAsked() const { return isAsked_; }

private:
    std::string password_;
    bool isAsked_ = false;
};

} // namespace deskwatch

#endif
