#include "fault_runs.h"

#include <stdexcept>

FaultRuns::FaultRuns(const FaultStory& story, int each)
    : story_(story), database_(harness::databaseWith(story.story.accounts)), each_(each) {
    StoryRun run(story_, database_);
    good_.rowsBefore = run.rows();
    run.play({});
    if (!run.end().isFinished()) {
        throw std::runtime_error(story.story.name + " without faults: " + run.end().how());
    }
    good_.outcome = run.outcome();
    good_.rowsAfter = run.rows();
    for (const auto& [function, calls] : good_.outcome.counts) {
        if (calls != 0) {
            functions_.push_back(function);
        }
    }
}

void FaultRuns::failEachCall() {
    for (const auto& function : functions_) {
        for (int nth = 1; nth <= good_.outcome.counts.at(function); ++nth) {
            for (const int code : codesOf(function)) {
                run({{function, nth, code}});
            }
        }
    }
}

void FaultRuns::failEachFunction() {
    for (const auto& function : functions_) {
        for (const int code : codesOf(function)) {
            run({{function, Fault::always, code}});
        }
    }
}

void FaultRuns::failEachTwoFunctions() {
    for (auto first = functions_.begin(); first != functions_.end(); ++first) {
        for (auto second = std::next(first); second != functions_.end(); ++second) {
            run({{*first, Fault::always, codesOf(*first).front()}, {*second, Fault::always, codesOf(*second).front()}});
        }
    }
}

void FaultRuns::run(const std::vector<Fault>& faults) {
    if (count_++ % each_ != 0) {
        return;
    }
    ++made_;
    StoryRun run(story_, database_);
    run.play(faults);
    if (!run.end().isFinished()) {
        ends_.push_back(faults.front().text());
    }
    const auto problems = problemsOf(run, faults, good_);
    problems_.insert(problems_.end(), problems.begin(), problems.end());
}
