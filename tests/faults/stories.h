#ifndef FAULTS_STORIES_H
#define FAULTS_STORIES_H

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "fake_platform.h"
#include "rules/TeskPolicyData.h"

/// The account of the diagnostic interface.
inline constexpr int testAccountId = 999;

/// Something that happens to a watch whose service runs, and that the service answers.
struct Story {
    std::string name;

    /// The accounts that are stored before the service starts.
    std::vector<TeskPolicyData> accounts;

    /// What is special about the watch; null when nothing is.
    std::function<void(fake::FakePlatform&)> device;

    /// What happens while the service runs; null when the start is the story.
    std::function<void(fake::FakePlatform&)> act;

    /// Whether the calls of the start, and those of the end, belong to the story.
    bool withStart = false;
    bool withEnd = false;

    /// Fewer runs than this would mean that calls were overlooked.
    int leastRuns = 0;

    /// The failing calls that end the process: allocations of managers, none of whose users asks whether it got one.
    std::vector<std::string> ends;
};

const std::vector<Story>& stories();

/// A watch as UnitTest has it: unlocked, unencrypted, outside of Korea.
void prepareWatch(fake::FakePlatform& platform, const Story& story);

/// For GoogleTest.
void PrintTo(const Story& story, std::ostream* out);

#endif
