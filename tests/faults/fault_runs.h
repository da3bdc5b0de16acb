#ifndef FAULTS_FAULT_RUNS_H
#define FAULTS_FAULT_RUNS_H

#include <string>
#include <vector>

#include "fault_check.h"

/// Plays a story once without faults, then once with each call failing, each function failing always, and each two
/// functions failing always.
class FaultRuns {
public:
    /// Only every `each`th of the runs is made.
    FaultRuns(const FaultStory& story, int each);

    void failEachCall();
    void failEachFunction();
    void failEachTwoFunctions();

    /// The runs with faults that there are, and those that were made.
    int count() const { return count_; }
    int made() const { return made_; }

    /// The faults that ended the process.
    const std::vector<std::string>& ends() const { return ends_; }

    /// What did not hold, one line each.
    const std::vector<std::string>& problems() const { return problems_; }

private:
    void run(const std::vector<Fault>& faults);

    const FaultStory& story_;
    std::string database_;
    GoodRun good_;
    std::vector<std::string> functions_; ///< those that the story calls
    const int each_;
    int count_ = 0;
    int made_ = 0;
    std::vector<std::string> ends_;
    std::vector<std::string> problems_;
};

#endif
