#ifndef FAKE_FAULTS_H
#define FAKE_FAULTS_H

#include <map>
#include <optional>
#include <string>

namespace fake {

/// Which calls fail. A function is named by its C name ("operator new" and "operator new[]" are those that do not
/// throw). A failing call answers the given code, or null where the function returns a pointer, and has no effect; the
/// code 0 stands for a function that claims success and yet does nothing.
class Faults {
public:
    void always(const std::string& function, int code = -1) { always_[function] = code; }

    /// Fails the nth call from now on, 1 being the next.
    void atCall(const std::string& function, int nth, int code = -1) {
        atCall_[function][nth + calls_[function]] = code;
    }

    void never(const std::string& function);

    /// No call fails from now on.
    void none();

    /// How often each function was called so far.
    const std::map<std::string, int>& calls() const { return calls_; }

    /// Counts a call and tells the code with which it fails, if it does.
    std::optional<int> onCall(const std::string& function);

private:
    std::map<std::string, int> always_;
    std::map<std::string, std::map<int, int>> atCall_;
    std::map<std::string, int> calls_;
};

} // namespace fake

#endif
