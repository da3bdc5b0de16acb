#ifndef PLATFORM_FAULTS_H
#define PLATFORM_FAULTS_H

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

#include "settings_store.h"

namespace host {

/// The errors that an application is to get from the platform, to see how it handles them. They are settings below
/// /faults/<application id>/: a function's name, and the code that it answers with the number of the call that gets
/// it, counted from when the process has learnt of it; 0 is every call.
class Faults {
public:
    /// Reads the settings, and again after each change.
    Faults(SettingsStore& store, const std::string& applicationId);

    Faults(const Faults&) = delete;
    Faults& operator=(const Faults&) = delete;
    ~Faults();

    /// The code that this call of a function answers, if it is to fail.
    std::optional<int> answer(const char* function);

private:
    struct Fault {
        std::pair<int, int> codeAndNth;
        int calls;
    };

    void notify(const std::string& path);
    void read();

    SettingsStore& store_;
    std::string folder_;
    SettingsStore::Listeners::iterator listener_;
    std::map<std::string, Fault, std::less<>> faults_;
};

} // namespace host

#endif
