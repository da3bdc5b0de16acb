#ifndef FAULTS_STORY_RUN_H
#define FAULTS_STORY_RUN_H

#include <string>
#include <vector>

#include "child.h"
#include "fault.h"
#include "outcome.h"
#include "stored_rows.h"
#include "stories.h"

/// The account of the good request that follows each story.
inline constexpr int nextAccountId = 77;

/// A story on a watch of its own: the service runs in another process, and what it stored is seen from this one.
class StoryRun {
public:
    /// The watch before the service starts; the database is a copy of this file unless it is empty.
    StoryRun(const Story& story, const std::string& databaseContent);

    /// Lets the story happen while these calls fail; then the faults end and a good request follows.
    void play(const std::vector<Fault>& faults);

    /// How the service's process ended.
    const ChildEnd& end() const { return end_; }

    /// What it did; nothing when it did not come to its end.
    const Outcome& outcome() const { return outcome_; }

    /// What is stored now.
    StoredRows rows() const { return storedRowsOf(databasePath()); }

    /// What was wrong with a good request to a new process of the service; empty when nothing was.
    std::string requestAfterRestart();

    /// The same, where every account is deleted before.
    std::string requestAfterLastDeletion();

    std::string databasePath() const { return platform_.dataPath + "dbspace/.tesk.db"; }
    fake::FakePlatform& platform() { return platform_; }

private:
    std::string restart(bool afterLastDeletion);

    const Story& story_;
    fake::FakePlatform platform_;
    ChildEnd end_;
    Outcome outcome_;
};

/// The bytes of a database in which the story's accounts are stored; empty when it has none.
std::string databaseOf(const Story& story);

#endif
