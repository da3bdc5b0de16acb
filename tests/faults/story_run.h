#ifndef FAULTS_STORY_RUN_H
#define FAULTS_STORY_RUN_H

#include <string>
#include <vector>

#include "checks.h"
#include "child_process.h"
#include "database_file.h"
#include "fault.h"
#include "fault_stories.h"
#include "outcome.h"

/// A story on a watch of its own: the service runs in another process, and what it stored is seen from this one.
class StoryRun {
public:
    /// The watch before the service starts; the database has this content unless that is empty.
    StoryRun(const FaultStory& story, const std::string& databaseContent);

    /// Lets the story happen while these calls fail; then the faults end and a good request follows.
    void play(const std::vector<Fault>& faults);

    /// How the service's process ended.
    const harness::ChildEnd& end() const { return end_; }

    /// What it did; nothing when it did not come to its end.
    const Outcome& outcome() const { return outcome_; }

    /// What is stored now, but for the good request's account.
    harness::StoredRows rows() const;

    /// What was wrong with a good request to a new process of the service; empty when nothing was. Every account may
    /// be deleted before.
    std::string requestAfterRestart(bool afterLastDeletion = false);

    std::string databasePath() const { return watch_.databasePath(); }

private:
    const FaultStory& story_;
    harness::Watch watch_;
    harness::ChildEnd end_;
    Outcome outcome_;
};

#endif
