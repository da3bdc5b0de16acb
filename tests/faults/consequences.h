#ifndef FAULTS_CONSEQUENCES_H
#define FAULTS_CONSEQUENCES_H

#include <string>

/// What goes on as if nothing had failed.
enum Keeps : unsigned {
    Nothing = 0,
    SettingNames = 1, ///< each rule of the device is written, if with another value
    Settings = 3,     ///< each rule of the device is written with its value
    Keys = 4,         ///< each key is written, if with another value
    Launches = 8,     ///< the same applications are launched
    Rows = 16,        ///< the same rows are stored
    Calls = 63        ///< the platform is told exactly the same
};

/// When a good request is served again in full.
enum class Served {
    AtOnce,           ///< in the same process
    AfterRestart,     ///< in the next process
    AfterLastDeletion ///< once no account is stored any more
};

/// What follows from a failing call.
struct Consequence {
    const char* call; ///< how the call begins, its arguments included where they matter
    unsigned keeps;   ///< of Keeps
    const char* log;  ///< a line that is logged: * is anything, @ the code, | separates two; empty when there is none
    Served served = Served::AtOnce; ///< at the latest
    bool mayEnd = false;            ///< whether the service's process may come to its end
};

/// The consequence of a failing call, written as in the journal.
const Consequence& consequenceOf(const std::string& call);

/// Whether a log line is as the consequence has it.
bool isLogOf(const Consequence& consequence, int code, const std::string& line);

#endif
