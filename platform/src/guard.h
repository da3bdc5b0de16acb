#ifndef PLATFORM_GUARD_H
#define PLATFORM_GUARD_H

#include <exception>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>

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

/// The code that this call of a function is to answer instead of doing its work, if it is to fail.
using FaultSource = std::function<std::optional<int>(const char* function)>;

/// While it lives, guarded functions fail as its source says. A process has at most one.
class FaultInjection {
public:
    explicit FaultInjection(FaultSource source);
    FaultInjection(const FaultInjection&) = delete;
    FaultInjection& operator=(const FaultInjection&) = delete;
    ~FaultInjection();

private:
    FaultSource source_;
};

/// What the source of the process's FaultInjection says; nothing when there is none.
std::optional<int> faultOf(const char* function) noexcept;

/// Runs the body of a C function or callback, unless it is to fail: then it answers the code that was asked for, or
/// `failure` where it answers no code. An exception does not leave it: it is reported, and `failure` answered.
template <class Result, class Body>
Result guarded(const char* function, Result failure, Body&& body) noexcept {
    if (const auto code = faultOf(function)) {
        if constexpr (std::is_same_v<Result, int>) {
            return *code;
        } else {
            return failure;
        }
    }
    try {
        return body();
    } catch (...) {
        reportException(function);
        return failure;
    }
}

/// The same for a function or callback that answers nothing.
template <class Body>
void guarded(const char* function, Body&& body) noexcept {
    guarded(function, 0, [&] {
        body();
        return 0;
    });
}

} // namespace host

#endif
