#include "stage.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>

#include "apart.h"

namespace kill_points {

namespace {

namespace fs = std::filesystem;

using Note = std::function<void(const std::string&)>;

/// Starts the service and has it work the requests off; each state that it comes to goes to `note`.
int play(const fs::path& folder, const std::vector<Request>& requests, const Note& note) {
    ServiceRun service(folder);
    service.run([&] {
        note(service.state());
        for (const auto& request : requests) {
            service.send(request);
            note(service.state());
        }
    });
    return 0;
}

/// A sound file that nobody else may read, and nothing beside it.
void expectSoundStore(const fs::path& file) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open_v2(file.c_str(), &database, SQLITE_OPEN_READONLY, nullptr), SQLITE_OK);
    std::string verdict;
    const auto take = [](void* text, int /*count*/, char** values, char** /*names*/) {
        *static_cast<std::string*>(text) += values[0];
        return 0;
    };
    sqlite3_exec(database, "PRAGMA integrity_check", take, &verdict, nullptr);
    sqlite3_close(database);
    EXPECT_EQ(verdict, "ok");
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), fs::directory_iterator()), 1)
        << "something is left beside the database";
    EXPECT_EQ(fs::status(file).permissions(), static_cast<fs::perms>(0600));
}

/// Starts the service where another was stopped. Returns the number of the state in which it finds the store.
int restart(const fs::path& folder, const States& states) {
    ServiceRun service(folder);
    auto found = states.end();
    service.run([&] {
        found = std::find(states.begin(), states.end(), service.state());
        EXPECT_NE(found, states.end()) << "neither the old rows nor the new ones, or not enforced:\n"
                                       << service.state();

        const auto stored = ServiceRun::accounts();
        service.send(freshAccount());
        EXPECT_EQ(ServiceRun::accounts().rfind(stored + std::to_string(freshAccountId) + " ", 0), 0U);
        EXPECT_NE(service.deviceSettings(), "");
    });
    EXPECT_EQ(service.databaseErrors(), std::vector<std::string>{});
    expectSoundStore(ServiceRun::database(folder));
    return static_cast<int>(std::distance(states.begin(), found));
}

/// A file outside of the service's folder for each state, since they come from another process.
Note noteIn(const fs::path& folder) {
    return [folder, count = 0](const std::string& state) mutable {
        std::ofstream(folder / ("state" + std::to_string(count++))) << state;
    };
}

States notesIn(const fs::path& folder) {
    States states;
    while (true) {
        std::ifstream file(folder / ("state" + std::to_string(states.size())));
        if (!file) {
            return states;
        }
        states.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
}

} // namespace

Stage::Stage(const Story& story) : story_(story) {
    fs::create_directory(original_);
    if (story.before) {
        EXPECT_EQ(runApart([&] { return play(original_, *story.before, noteIn(original_)); }), 0);
        const auto states = notesIn(original_);
        before_ = states.empty() ? "" : states.back();
    }
    if (story.cutOff) {
        cutOff(*story.cutOff);
    }
}

void Stage::rehearse() {
    prepare();
    const auto run = runTraced(data(), [&] { return play(stage_, story_.requests, noteIn(stage_)); });
    EXPECT_EQ(run.status, 0);
    EXPECT_GE(run.steps.size(), story_.leastSteps) << testing::PrintToString(run.steps);
    steps_ = run.steps;
    states_ = notesIn(stage_);
    ASSERT_EQ(states_.size(), story_.requests.size() + 1);
    EXPECT_EQ(states_.front(), before_);
}

int Stage::stopAt(const Stop& stop) const {
    prepare();
    const auto run = runTraced(
        data(), [&] { return play(stage_, story_.requests, [](auto&) {}); }, stop);
    EXPECT_EQ(run.status, std::nullopt) << "it was not stopped";
    EXPECT_EQ(run.steps.size(), stop.step + 1);
    return runApart([&] { return restart(stage_, states_); });
}

/// Sets the stage as it was before the story.
void Stage::prepare() const {
    fs::remove_all(stage_);
    fs::create_directory(stage_);
    if (fs::exists(original_ / "data")) {
        fs::copy(original_ / "data", stage_ / "data", fs::copy_options::recursive);
    }
}

/// Leaves the store as a request does that is stopped before it removes its journal: all is written, nothing holds.
void Stage::cutOff(const Request& request) const {
    prepare();
    const auto body = [&] { return play(stage_, {request}, [](auto&) {}); };
    const auto steps = runTraced(data(), body).steps;
    const auto commit = std::find(steps.begin(), steps.end(), "unlink dbspace/.tesk.db-journal");
    ASSERT_NE(commit, steps.end());
    const auto step = static_cast<std::size_t>(std::distance(steps.begin(), commit));
    prepare();
    runTraced(data(), body, Stop{step, Stop::Moment::Before});
    fs::remove_all(original_ / "data");
    fs::copy(stage_ / "data", original_ / "data", fs::copy_options::recursive);
}

} // namespace kill_points
