#ifndef PLATFORM_FAULTS_H
#define PLATFORM_FAULTS_H

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "settings_store.h"

namespace host {

/// The errors that this application is to get from the platform, so that one sees what it makes of them. They are
/// settings below /faults/<application id>/: a function's name, and the code that it answers with the number of the
/// call that gets it, counted from when the process has learnt of it; 0 is every call.
class Faults {
public:
    /// The process's one table. It is empty until it is loaded.
    static Faults& get();

    /// Reads the table, and again after each change. A process without an application id
    /// has none. Does nothing when it was loaded already.
    void load(SettingsStore& store);

    /// Takes the news that a setting has changed.
    void notify(SettingsStore& store, const std::string& path);

    /// The code that this call of a function answers, if it is to fail.
    std::optional<int> answer(const char* function);

private:
    struct Fault {
        int code = 0;
        int nth = 0;
        int calls = 0;
    };

    void read(SettingsStore& store);

    bool isLoaded_ = false;
    std::string folder_;
    std::map<std::string, Fault, std::less<>> faults_;
};

} // namespace host

#endif
