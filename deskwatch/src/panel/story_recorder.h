#ifndef DESKWATCH_STORY_RECORDER_H
#define DESKWATCH_STORY_RECORDER_H

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "panel/child_process.h"
#include "panel/event_ring.h"
#include "status/followed_file.h"

namespace deskwatch {

/// Records on request what happens on a watch, for the pages to save. The ring's state "recording" tells how it stands.
class StoryRecorder {
public:
    /// Keeps the recording in that file; `folder` is that of the watch.
    StoryRecorder(std::string folder, std::filesystem::path file, EventRing& ring, std::function<void()> tell);

    /// Begins a recording, unless one is going on.
    void start();

    /// Ends it.
    void stop();

    /// The recording, complete or not; empty when there is none.
    std::string text() const;

private:
    void onEnd(int status);
    void tellState();

    std::string folder_;
    std::filesystem::path file_;
    EventRing& ring_;
    std::function<void()> tell_;
    std::optional<LineProcess> process_;
    std::optional<FollowedFile> followed_;
    std::size_t lines_ = 0;
    std::string said_; // last, which is the reason when it fails
    std::string error_;
};

} // namespace deskwatch

#endif
