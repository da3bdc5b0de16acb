#ifndef KILL_POINTS_STAGE_H
#define KILL_POINTS_STAGE_H

#include <filesystem>
#include <string>
#include <vector>

#include "stories.h"
#include "temporary_folder.h"
#include "traced_run.h"

namespace kill_points {

/// States that the store goes through, in order; a stopped service is found in one of them.
using States = std::vector<std::string>;

/// The folders of a story: one that is kept as it was before, and one in which the story is played over and over. What
/// does not hold fails the running test.
class Stage {
public:
    explicit Stage(const Story& story);

    /// Plays the story to its end, and notes its steps and states.
    void rehearse();

    const std::vector<std::string>& steps() const { return steps_; }
    const States& states() const { return states_; }

    /// Plays the story up to the stop and starts the service anew. Returns the number of the state that it finds, or
    /// `failed`.
    int stopAt(const Stop& stop) const;

private:
    std::filesystem::path data() const { return stage_ / "data"; }
    void prepare() const;
    void cutOff(const Request& request) const;

    const Story& story_;
    TemporaryFolder folder_;
    std::filesystem::path original_ = std::filesystem::canonical(folder_.path()) / "original";
    std::filesystem::path stage_ = std::filesystem::canonical(folder_.path()) / "stage";
    std::string before_;
    std::vector<std::string> steps_;
    States states_;
};

} // namespace kill_points

#endif
