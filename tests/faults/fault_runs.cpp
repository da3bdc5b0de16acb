#include "fault_runs.h"

#include <algorithm>
#include <set>
#include <stdexcept>

#include "consequences.h"

namespace {

using Lines = Outcome::Lines;

std::string wordOf(Served served) {
    static const std::vector<std::string> words{"at once", "after a restart", "after the last deletion"};
    return words.at(static_cast<std::size_t>(served));
}

/// Holds one run with faults against the run without.
class Check {
public:
    Check(const Outcome& good, StoryRun& run, std::vector<Fault> faults)
        : good_(good), run_(run), faults_(std::move(faults)) {}

    /// What does not hold.
    std::vector<std::string> problems(const StoredRows& before, const StoredRows& after) {
        const auto rows = readRows();
        checkEnd();
        checkLeaks();
        checkRows(rows, before, after);
        checkServed();
        if (faults_.size() == 1 && run_.end().isFinished()) {
            checkConsequence(rows, after);
        }
        return std::move(problems_);
    }

private:
    void add(const std::string& problem) {
        std::string text;
        for (const auto& fault : faults_) {
            text += fault.text() + "; ";
        }
        problems_.push_back(text + problem);
    }

    StoredRows readRows() {
        try {
            auto rows = run_.rows();
            rows.erase(nextAccountId);
            return rows;
        } catch (const std::exception& error) {
            add(error.what());
            return {};
        }
    }

    /// The consequence of each fault; of a function that always fails, that of each of its calls.
    std::vector<Consequence> consequences() const {
        std::vector<Consequence> all;
        for (const auto& fault : faults_) {
            const auto calls = callsOf(fault.function);
            if (fault.nth != Fault::always) {
                all.push_back(consequenceOf(calls.at(static_cast<std::size_t>(fault.nth) - 1)));
                continue;
            }
            std::transform(calls.begin(), calls.end(), std::back_inserter(all), consequenceOf);
        }
        return all;
    }

    Lines callsOf(const std::string& function) const {
        Lines calls;
        if (function == "sqlite3_step") {
            std::transform(good_.steps.begin(), good_.steps.end(), std::back_inserter(calls),
                           [&](const std::string& sql) { return function + " " + sql; });
            return calls;
        }
        std::copy_if(good_.calls.begin(), good_.calls.end(), std::back_inserter(calls),
                     [&](const std::string& call) { return call.substr(0, call.find(' ')) == function; });
        const auto count = static_cast<std::size_t>(good_.counts.at(function));
        if (calls.size() != count) {
            calls.assign(count, function); // not one that the journal writes down
        }
        return calls;
    }

    void checkEnd() {
        const auto all = consequences();
        const bool mayEnd = std::any_of(all.begin(), all.end(), [](const auto& row) { return row.mayEnd; });
        if (!run_.end().isFinished() && !mayEnd) {
            add(run_.end().how());
        }
    }

    void checkLeaks() {
        const bool expected = std::any_of(faults_.begin(), faults_.end(),
                                          [](const Fault& fault) { return releasesAnObject(fault.function); });
        if (!run_.outcome().leaks.empty() && !expected) {
            add("leak of " + run_.outcome().leaks.front());
        }
    }

    void checkRows(const StoredRows& rows, const StoredRows& before, const StoredRows& after) {
        for (const auto& [accountId, row] : rows) {
            const auto isAsIn = [id = accountId, &text = row](const StoredRows& stored) {
                const auto found = stored.find(id);
                return found != stored.end() && found->second == text;
            };
            if (!isAsIn(before) && !isAsIn(after)) {
                add("a row that nobody wrote: " + row);
            }
        }
        for (const auto& [accountId, row] : before) {
            if (after.count(accountId) != 0 && rows.count(accountId) == 0) {
                add("a lost row: " + row);
            }
        }
    }

    void checkServed() {
        Served expected = Served::AtOnce;
        for (const auto& row : consequences()) {
            expected = std::max(expected, row.served);
        }
        if (run_.outcome().nextRequest.empty()) {
            return;
        }
        std::string flaw = run_.outcome().nextRequest;
        Served served = Served::AfterRestart;
        if (flaw = run_.requestAfterRestart(); !flaw.empty()) {
            served = Served::AfterLastDeletion;
            flaw = run_.requestAfterLastDeletion();
        }
        if (!flaw.empty()) {
            add("the next good request is never served: " + flaw);
        } else if (served > expected && !(served == Served::AfterRestart && wasNotAsked())) {
            add("the next good request is served only " + wordOf(served) + ": " + run_.outcome().nextRequest);
        }
    }

    /// Whether the process ended before the next request could be sent to it.
    bool wasNotAsked() const { return !run_.end().isFinished() || run_.outcome().nextRequest == "not sent"; }

    void checkConsequence(const StoredRows& rows, const StoredRows& after) {
        const auto all = consequences();
        unsigned keeps = Calls;
        for (const auto& row : all) {
            keeps &= row.keeps;
        }
        const auto& bad = run_.outcome();
        keep(keeps, Calls, "calls", good_.calls, bad.calls);
        keep(keeps, SettingNames, "set rules", good_.settingNames(), bad.settingNames());
        keep(keeps, Settings, "values of rules", valuesOf(good_.settings()), valuesOf(bad.settings()));
        keep(keeps, Keys, "keys", good_.keys(), bad.keys());
        keep(keeps, Launches, "launches", good_.launches, bad.launches);
        if ((keeps & Rows) == Rows && rows != after) {
            add("other rows");
        }
        if (isCallOfDatabase(faults_.front()) && otherRows(rows, after) > 1) {
            add("more rows than one are other ones");
        }
        if (rows != after && faults_.front().code != 0 && !all.front().mayEnd && !saysMoreThanGood()) {
            add("nobody tells of the row that is not stored");
        }
        checkLog(all.front());
    }

    void keep(unsigned kept, unsigned what, const std::string& name, const Lines& good, const Lines& bad) {
        if ((kept & what) != what || good == bad) {
            return;
        }
        const auto other = std::mismatch(good.begin(), good.end(), bad.begin(), bad.end());
        add("other " + name + ": " + (other.first == good.end() ? "more" : *other.first) + " became " +
            (other.second == bad.end() ? "nothing" : *other.second));
    }

    static Lines valuesOf(const std::map<std::string, std::string>& settings) {
        Lines values;
        for (const auto& [name, line] : settings) {
            values.push_back(line);
        }
        return values;
    }

    static bool isCallOfDatabase(const Fault& fault) {
        return fault.nth != Fault::always && fault.function.rfind("sqlite", 0) == 0;
    }

    /// The number of accounts whose rows are not the same.
    static int otherRows(const StoredRows& some, const StoredRows& others) {
        std::set<int> accounts;
        const auto addMissing = [&](const StoredRows& from, const StoredRows& in) {
            for (const auto& [accountId, row] : from) {
                const auto found = in.find(accountId);
                if (found == in.end() || found->second != row) {
                    accounts.insert(accountId);
                }
            }
        };
        addMissing(some, others);
        addMissing(others, some);
        return static_cast<int>(accounts.size());
    }

    /// Whether a line of the log is one that the run without faults does not have.
    bool saysMoreThanGood() const {
        const auto& lines = run_.outcome().warnings;
        return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
            return std::find(good_.warnings.begin(), good_.warnings.end(), line) == good_.warnings.end();
        });
    }

    void checkLog(const Consequence& consequence) {
        const auto& lines = run_.outcome().warnings;
        const int code = faults_.front().code;
        if (code == 0 || *consequence.log == '\0') {
            return;
        }
        if (std::none_of(lines.begin(), lines.end(),
                         [&](const std::string& line) { return isLogOf(consequence, code, line); })) {
            add(std::string("no log line ") + consequence.log + (lines.empty() ? "" : " but " + lines.front()));
        }
    }

    const Outcome& good_;
    StoryRun& run_;
    const std::vector<Fault> faults_;
    std::vector<std::string> problems_;
};

} // namespace

FaultRuns::FaultRuns(const Story& story, int each) : story_(story), database_(databaseOf(story)), each_(each) {
    StoryRun run(story_, database_);
    rowsBefore_ = run.rows();
    run.play({});
    if (!run.end().isFinished()) {
        throw std::runtime_error(story.name + " without faults: " + run.end().how());
    }
    good_ = run.outcome();
    rowsAfter_ = run.rows();
    rowsAfter_.erase(nextAccountId);
}

void FaultRuns::failEachCall() {
    for (const auto& [function, calls] : good_.counts) {
        for (int nth = 1; nth <= calls; ++nth) {
            for (const int code : codesOf(function)) {
                run({{function, nth, code}});
            }
        }
    }
}

void FaultRuns::failEachFunction() {
    for (const auto& [function, calls] : good_.counts) {
        if (calls == 0) {
            continue;
        }
        for (const int code : codesOf(function)) {
            run({{function, Fault::always, code}});
        }
    }
}

void FaultRuns::failEachTwoFunctions() {
    for (auto first = good_.counts.begin(); first != good_.counts.end(); ++first) {
        for (auto second = std::next(first); second != good_.counts.end(); ++second) {
            if (first->second != 0 && second->second != 0) {
                run({{first->first, Fault::always, codesOf(first->first).front()},
                     {second->first, Fault::always, codesOf(second->first).front()}});
            }
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
    const auto problems = Check(good_, run, faults).problems(rowsBefore_, rowsAfter_);
    problems_.insert(problems_.end(), problems.begin(), problems.end());
}
