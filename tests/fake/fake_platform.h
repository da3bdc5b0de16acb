#ifndef FAKE_PLATFORM_H
#define FAKE_PLATFORM_H

#include <initializer_list>
#include <optional>
#include <set>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "device_policy.h"
#include "faults.h"
#include "journal.h"
#include "launches.h"
#include "message_ports.h"
#include "preference_store.h"
#include "service_script.h"
#include "settings_store.h"
#include "system_calls.h"

namespace fake {

/// The platform of one process, in memory. While an object of this class lives, the functions of the platform work on
/// its parts: they write down what they were told, answer as set, and fail where the test says so. There is one at a
/// time. The service keeps process-wide instances, so each test runs in a process of its own.
class FakePlatform {
public:
    /// Makes the application's data folder and the keys of a device's image, and becomes the platform of the process.
    FakePlatform();
    ~FakePlatform();
    FakePlatform(const FakePlatform&) = delete;
    FakePlatform& operator=(const FakePlatform&) = delete;

    static bool exists();

    /// The platform of the process; ends the process with a message when there is none.
    static FakePlatform& current();

    Journal journal;
    Faults faults;
    SettingsStore settings;
    PreferenceStore preferences;
    DevicePolicy devicePolicy;
    MessagePorts ports;
    Launches launches;
    ServiceScript service;
    SystemCalls system;

    /// The id of the application that this process is.
    std::string appId = "com.velmor.tesk-agent";

    /// What app_get_data_path answers; a fresh folder at first, which goes with this object.
    std::string dataPath;

    /// Does what the main loop would: tells of changed keys and delivers messages to own ports.
    void deliverPending();

    /// Forgets what goes with the service's process, so that the next one finds the device as it was left.
    void endProcess();

    /// Writes a call down and tells the code with which it fails, if it does.
    template <typename... Arguments>
    std::optional<int> call(const std::string& function, const Arguments&... arguments) {
        if (journal.isKept) {
            std::ostringstream text;
            text << function;
            ((text << ' ' << printable(arguments)), ...);
            journal.addCall(text.str());
        }
        return faults.onCall(function);
    }

    /// A copy for the service, which is to release it.
    char* handOut(const std::string& text);

    /// Notes that the service released something.
    void takeBack(void* memory) { handedOut_.erase(memory); }

    /// What the service got and never gave back, one line for each; the handle of the policy manager stays out of it.
    std::vector<std::string> leaks() const;

private:
    template <typename Argument>
    static const Argument& printable(const Argument& argument) {
        return argument;
    }
    static const char* printable(const char* text) { return text == nullptr ? "(null)" : text; }
    static const char* printable(std::nullptr_t) { return "(null)"; }

    std::string folder_;
    std::set<void*> handedOut_;
};

/// A call of one of the platform's functions: written down, and with the code with which it fails, if it does.
struct Call {
    template <typename... Arguments>
    // NOLINTNEXTLINE(google-explicit-constructor,hicpp-explicit-conversions): reads as {"function", argument, ...}
    Call(const std::string& function, const Arguments&... arguments)
        : fault(FakePlatform::current().call(function, arguments...)) {}

    std::optional<int> fault;
};

/// What a getter leaves in its argument when it finds a value of another type.
inline constexpr int overwritten = 1970037110;

/// The code of an invalid argument, the same for all of the platform's functions that have codes.
inline constexpr int invalidParameter = -22;

/// Answers a call: with its fault, with `invalidParameter` when one of the pointers is null, or with the code that
/// `act` returns, which is 0 when it returns nothing.
template <typename Act>
int answer(const Call& call, std::initializer_list<const void*> pointers, const Act& act) {
    if (call.fault) {
        return *call.fault;
    }
    for (const void* pointer : pointers) {
        if (pointer == nullptr) {
            return invalidParameter;
        }
    }
    if constexpr (std::is_void_v<decltype(act())>) {
        act();
        return 0;
    } else {
        return act();
    }
}

} // namespace fake

#endif
