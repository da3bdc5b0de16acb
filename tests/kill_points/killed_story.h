#ifndef KILL_POINTS_KILLED_STORY_H
#define KILL_POINTS_KILLED_STORY_H

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "kill_point_stories.h"
#include "temporary_folder.h"
#include "traced_run.h"

namespace kill_points {

/// A story that is played over and over in a folder, each time from the same beginning. What does not hold fails the
/// running test.
class KilledStory {
public:
    /// Plays the story to its end, and notes its steps and the states of its store.
    explicit KilledStory(const KillPointStory& story);

    /// The system calls of the story that write.
    const std::vector<std::string>& steps() const { return steps_; }

    /// The number of states that the store goes through: one after the start, one after each event.
    std::size_t states() const { return states_.size(); }

    /// Kills the service at a point of the story, and starts it anew. Returns the number of the state that it finds.
    std::optional<std::size_t> killAt(const KillPoint& point) const;

private:
    void prepare() const;
    void cutOff(const harness::Event& event) const;
    TracedRun trace(const harness::Story& story, const std::optional<KillPoint>& point) const;

    const harness::Story& story_;
    TemporaryFolder folder_;
    std::filesystem::path original_ = std::filesystem::canonical(folder_.path()) / "original";
    std::filesystem::path played_ = std::filesystem::canonical(folder_.path()) / "played";
    std::vector<std::string> steps_;
    std::vector<std::string> states_;
};

} // namespace kill_points

#endif
