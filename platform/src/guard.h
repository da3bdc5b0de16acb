#ifndef PLATFORM_GUARD_H
#define PLATFORM_GUARD_H

#include <exception>
#include <stdexcept>
#include <string>

namespace host {

/// Something that the host platform needs is missing or failed. The text says what was being done, to what, and why.
class HostError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Writes one line about the host platform itself to stderr.
void report(const std::string& text) noexcept;

/// Reports the exception that is being handled, as met by the named function.
void reportException(const char* function) noexcept;

/// Runs the body of a C function or callback. An exception does not leave it: it is reported, and `failure` answered.
template <class Result, class Body>
Result guarded(const char* function, Result failure, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        reportException(function);
        return failure;
    }
}

} // namespace host

#endif
