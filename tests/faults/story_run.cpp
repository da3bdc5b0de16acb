#include "story_run.h"

#include "system_calls_of_sqlite.h"

namespace {

/// Plays a story in the service's own process.
class Player {
public:
    Player(const FaultStory& story, const std::vector<Fault>& faults, harness::Watch& watch)
        : story_(story), faults_(faults), watch_(watch), platform_(watch.platform) {}

    std::string play() {
        leadSystemCallsOfSqlite();
        if (story_.withStart) {
            begin();
        }
        watch_.run([this] { runMainLoop(); });
        if (!isFinished_) {
            finish();
        }
        return outcome_.toText();
    }

private:
    void runMainLoop() {
        if (!story_.withStart) {
            begin();
        }
        for (const auto& event : story_.story.events) {
            event(watch_);
        }
        platform_.deliverPending();
        if (!story_.withEnd) {
            finish();
            outcome_.nextRequest = harness::flawAfterGoodRequest(watch_);
        }
    }

    void begin() {
        platform_.journal.clear();
        platform_.system.steps.clear();
        countsBefore_ = platform_.faults.calls();
        launchesBefore_ = platform_.launches.sent.size();
        for (const auto& fault : faults_) {
            fault.arm(platform_.faults);
        }
    }

    void finish() {
        isFinished_ = true;
        platform_.faults.none();
        outcome_.calls = platform_.journal.calls();
        outcome_.steps = platform_.system.steps;
        outcome_.warnings = platform_.journal.warnings();
        outcome_.leaks = platform_.leaks();
        outcome_.isAdministrator = !platform_.devicePolicy.clients.empty();
        for (auto launch = launchesBefore_; launch < platform_.launches.sent.size(); ++launch) {
            outcome_.launches.push_back(platform_.launches.sent.at(launch).appId);
        }
        for (const auto& [function, count] : platform_.faults.calls()) {
            outcome_.counts[function] = count - countsBefore_[function];
        }
    }

    const FaultStory& story_;
    const std::vector<Fault>& faults_;
    harness::Watch& watch_;
    fake::FakePlatform& platform_;
    Outcome outcome_;
    bool isFinished_ = false;
    std::map<std::string, int> countsBefore_;
    std::size_t launchesBefore_ = 0;
};

} // namespace

StoryRun::StoryRun(const FaultStory& story, const std::string& databaseContent) : story_(story) {
    harness::prepare(watch_, story.story);
    if (!databaseContent.empty()) {
        harness::writeDatabase(databasePath(), databaseContent);
    }
}

void StoryRun::play(const std::vector<Fault>& faults) {
    end_ = harness::runInChild([&] { return Player(story_, faults, watch_).play(); });
    if (end_.isFinished()) {
        outcome_ = Outcome::fromText(end_.text);
    }
}

harness::StoredRows StoryRun::rows() const {
    auto rows = harness::storedRows(databasePath());
    rows.erase(harness::goodAccountId);
    return rows;
}

std::string StoryRun::requestAfterRestart(bool afterLastDeletion) {
    if (end_.isFinished()) {
        watch_.platform.devicePolicy.clients.clear();
        if (outcome_.isAdministrator) {
            watch_.platform.devicePolicy.registerService();
        }
    }
    const auto end = harness::runInChild([&] {
        std::string flaw = "no main loop";
        leadSystemCallsOfSqlite();
        watch_.run([&] {
            if (afterLastDeletion) {
                harness::deleteEveryAccount(watch_);
            }
            flaw = harness::flawAfterGoodRequest(watch_);
        });
        return flaw;
    });
    return end.isFinished() ? end.text : end.how();
}
