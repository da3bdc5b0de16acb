#ifndef FAULTS_OUTCOME_H
#define FAULTS_OUTCOME_H

#include <map>
#include <string>

#include "fake_platform.h"

/// What a story did to the watch, as one process tells it to another.
struct Outcome {
    using Lines = fake::Journal::Lines;

    Lines calls;
    Lines steps;    ///< the statement of each step of SQLite
    Lines warnings; ///< the log lines of WARN and above
    Lines launches; ///< the ids of the launched applications
    Lines leaks;
    std::map<std::string, int> counts; ///< how often each function was called
    bool isAdministrator = false;

    /// What was wrong with the good request that followed; empty when nothing was.
    std::string nextRequest = "not sent";

    /// The last call that set each rule of the device, by its function.
    std::map<std::string, std::string> settings() const;

    /// The keys that tell of the outcome and that were written.
    Lines keys() const;

    std::string toText() const;
    static Outcome fromText(const std::string& text);
};

#endif
