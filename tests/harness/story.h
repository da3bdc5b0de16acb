#ifndef HARNESS_STORY_H
#define HARNESS_STORY_H

#include <string>
#include <vector>

#include "events.h"

namespace harness {

/// What happens to a watch, one event after the other.
struct Story {
    std::string name;

    /// The accounts that are stored before the service starts.
    std::vector<TeskPolicyData> accounts;

    /// What happens while the service runs; nothing when the start is the story.
    std::vector<Event> events;

    /// What is special about the watch before; null when nothing is.
    Event device = nullptr;
};

/// Brings a watch to where the story begins: the mail application listens, and where accounts are stored, the service
/// administers the device. The stored accounts are the caller's matter.
void prepare(Watch& watch, const Story& story);

/// The bytes of a database with these accounts; empty when there are none.
std::string databaseWith(const std::vector<TeskPolicyData>& accounts);

} // namespace harness

#endif
