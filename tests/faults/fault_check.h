#ifndef FAULTS_FAULT_CHECK_H
#define FAULTS_FAULT_CHECK_H

#include <string>
#include <vector>

#include "story_run.h"

/// What a story does while no call fails.
struct GoodRun {
    Outcome outcome;
    harness::StoredRows rowsBefore;
    harness::StoredRows rowsAfter;
};

/// Holds a run with faults against the one without. Returns what does not hold, one line each.
std::vector<std::string> problemsOf(StoryRun& run, const std::vector<Fault>& faults, const GoodRun& good);

#endif
