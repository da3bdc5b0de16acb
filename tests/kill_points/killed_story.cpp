#include "killed_story.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <sstream>

#include "accounts.h"
#include "checks.h"
#include "child_process.h"
#include "database_file.h"

namespace kill_points {

namespace {

namespace fs = std::filesystem;
using harness::Story;
using harness::Watch;

constexpr char endOfState = '\f';

std::string textOf(const TeskPolicyData& account) {
    std::string text;
    for (const auto& field : harness::fieldsOf(account)) {
        text += field + " ";
    }
    return text + "\n";
}

/// The stored accounts, one in a line.
std::string currentState() {
    std::string state;
    for (const auto& account : harness::storedAccounts()) {
        state += textOf(*account);
    }
    return state;
}

std::vector<std::string> statesOf(const std::string& text) {
    std::vector<std::string> states;
    std::istringstream all(text);
    for (std::string state; std::getline(all, state, endOfState);) {
        states.push_back(state);
    }
    return states;
}

/// A watch that keeps everything below a folder: a killed run leaves the fake's own files too.
std::unique_ptr<Watch> watchIn(const fs::path& folder, const Story& story) {
    setenv("TMPDIR", folder.c_str(), 1);
    auto watch = std::make_unique<Watch>();
    watch->platform.dataPath = folder / "data" / "";
    harness::prepare(*watch, story);
    return watch;
}

/// Returns the state after the start and after each event.
std::string play(const fs::path& folder, const Story& story) {
    const auto watch = watchIn(folder, story);
    std::string states;
    watch->run([&] {
        states = currentState() + endOfState;
        for (const auto& event : story.events) {
            event(*watch);
            states += currentState() + endOfState;
        }
    });
    return states;
}

/// What does not hold where another process was killed; the state that was found goes to `found`.
std::string flawAfterStart(Watch& watch, std::string& found) {
    found = currentState();
    // a start leaves the device alone while nothing is stored
    if (std::string flaw = found.empty() ? "" : harness::flawOfEnforcement(watch); !flaw.empty()) {
        return flaw;
    }
    if (std::string flaw = harness::flawAfterGoodRequest(watch); !flaw.empty()) {
        return flaw;
    }
    return currentState().rfind(found, 0) == 0 ? "" : "the good request changed other rows";
}

/// Starts the service where another was killed. Returns what does not hold, and the state that it finds.
std::string restart(const fs::path& folder, const Story& story) {
    const auto watch = watchIn(folder, story);
    // a device remembers its administrators, and the run may have been killed after its registration
    watch->platform.devicePolicy.registerService();
    std::string flaw = "no main loop";
    std::string found;
    watch->run([&] { flaw = flawAfterStart(*watch, found); });
    for (const auto& line : watch->platform.journal.logLines()) {
        if (line.level >= DLOG_ERROR && line.file == "TeskConsumerDbMgr.cpp") {
            flaw += line.text;
        }
    }
    return flaw + endOfState + found + endOfState;
}

/// A sound file that nobody else may read, and nothing beside it.
void expectSoundStore(const fs::path& file) {
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), fs::directory_iterator()), 1)
        << "something is left beside the database";
    EXPECT_EQ(fs::status(file).permissions(), static_cast<fs::perms>(0600));
    EXPECT_NO_THROW(harness::storedRows(file));
}

fs::path databaseIn(const fs::path& folder) {
    return folder / "data" / "dbspace" / ".tesk.db";
}

} // namespace

KilledStory::KilledStory(const KillPointStory& story) : story_(story.story) {
    fs::create_directories(original_ / "data");
    std::string stored;
    if (!story_.accounts.empty()) {
        harness::writeDatabase(databaseIn(original_), harness::databaseWith(story_.accounts));
        for (const auto& account : story_.accounts) {
            stored += textOf(account);
        }
    }
    if (story.cutOff) {
        cutOff(story.cutOff);
    }
    prepare();
    states_ = statesOf(harness::runInChild([&] { return play(played_, story_); }).text);
    EXPECT_EQ(states_.size(), story_.events.size() + 1);
    EXPECT_EQ(states_.front(), stored);
    const auto run = trace(story_, std::nullopt);
    EXPECT_EQ(run.status, 0);
    steps_ = run.steps;
    EXPECT_GE(steps_.size(), story.leastSteps) << testing::PrintToString(steps_);
}

std::optional<std::size_t> KilledStory::killAt(const KillPoint& point) const {
    const auto run = trace(story_, point);
    EXPECT_EQ(run.status, std::nullopt) << "it was not killed";
    EXPECT_EQ(run.steps.size(), point.step + 1);
    const auto end = harness::runInChild([&] { return restart(played_, story_); });
    EXPECT_TRUE(end.isFinished()) << end.how();
    expectSoundStore(databaseIn(played_));
    const auto told = statesOf(end.text);
    if (!end.isFinished() || told.size() != 2) {
        return std::nullopt;
    }
    EXPECT_EQ(told[0], "");
    const auto found = std::find(states_.begin(), states_.end(), told[1]);
    EXPECT_NE(found, states_.end()) << "neither the old rows nor the new ones:\n" << told[1];
    return static_cast<std::size_t>(std::distance(states_.begin(), found));
}

/// Sets the folder as it was before the story.
void KilledStory::prepare() const {
    fs::remove_all(played_);
    fs::copy(original_, played_, fs::copy_options::recursive);
}

TracedRun KilledStory::trace(const Story& story, const std::optional<KillPoint>& point) const {
    prepare();
    return runTraced(
        played_ / "data", [&] { play(played_, story); }, point);
}

/// Leaves the store as an event does that is killed before it removes its journal: all is written, nothing holds.
void KilledStory::cutOff(const harness::Event& event) const {
    const Story story{"", story_.accounts, {event}};
    const auto steps = trace(story, std::nullopt).steps;
    const auto commit = std::find(steps.begin(), steps.end(), "unlink dbspace/.tesk.db-journal");
    ASSERT_NE(commit, steps.end());
    trace(story, KillPoint{static_cast<std::size_t>(std::distance(steps.begin(), commit)), KillPoint::Moment::Before});
    fs::remove_all(original_ / "data");
    fs::copy(played_ / "data", original_ / "data", fs::copy_options::recursive);
}

} // namespace kill_points
