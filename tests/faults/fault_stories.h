#ifndef FAULTS_FAULT_STORIES_H
#define FAULTS_FAULT_STORIES_H

#include <iosfwd>
#include <string>
#include <vector>

#include "story.h"

/// A story in which each call fails in turn.
struct FaultStory {
    harness::Story story;

    /// Fewer runs than this would mean that calls were overlooked.
    int leastRuns;

    /// Whether the calls of the service's start, and those of its end, fail too.
    bool withStart = false;
    bool withEnd = false;

    /// The failing calls that end the process: allocations of managers, none of whose users asks whether it got one.
    std::vector<std::string> ends = {};
};

const std::vector<FaultStory>& faultStories();

/// For GoogleTest.
void PrintTo(const FaultStory& story, std::ostream* out);

#endif
