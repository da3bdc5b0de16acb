#include "fault_check.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "consequences.h"

namespace {

using Lines = Outcome::Lines;
using harness::StoredRows;

/// The consequence of each fault; of a function that always fails, that of each of its calls.
std::vector<Consequence> consequencesOf(const std::vector<Fault>& faults, const Outcome& good) {
    const auto callsOf = [&](const std::string& function) {
        Lines calls;
        if (function == "sqlite3_step") {
            std::transform(good.steps.begin(), good.steps.end(), std::back_inserter(calls),
                           [&](const std::string& sql) { return function + " " + sql; });
            return calls;
        }
        std::copy_if(good.calls.begin(), good.calls.end(), std::back_inserter(calls),
                     [&](const std::string& call) { return call.substr(0, call.find(' ')) == function; });
        const auto count = static_cast<std::size_t>(good.counts.at(function));
        return calls.size() == count ? calls : Lines(count, function); // or not one that the journal writes down
    };
    std::vector<Consequence> all;
    for (const auto& fault : faults) {
        const auto calls = callsOf(fault.function);
        if (fault.nth == Fault::always) {
            std::transform(calls.begin(), calls.end(), std::back_inserter(all), consequenceOf);
        } else {
            all.push_back(consequenceOf(calls.at(static_cast<std::size_t>(fault.nth) - 1)));
        }
    }
    return all;
}

bool isIn(const StoredRows& rows, int accountId, const std::string& row) {
    const auto found = rows.find(accountId);
    return found != rows.end() && found->second == row;
}

/// The number of accounts whose rows are not the same.
std::size_t otherRows(const StoredRows& some, const StoredRows& others) {
    std::set<int> accounts;
    const auto addMissing = [&](const StoredRows& from, const StoredRows& in) {
        for (const auto& [accountId, row] : from) {
            if (!isIn(in, accountId, row)) {
                accounts.insert(accountId);
            }
        }
    };
    addMissing(some, others);
    addMissing(others, some);
    return accounts.size();
}

Lines namesOf(const std::map<std::string, std::string>& settings) {
    Lines names;
    for (const auto& [name, line] : settings) {
        names.push_back(name);
    }
    return names;
}

Lines linesOf(const std::map<std::string, std::string>& settings) {
    Lines lines;
    for (const auto& [name, line] : settings) {
        lines.push_back(line);
    }
    return lines;
}

class Check {
public:
    Check(StoryRun& run, const std::vector<Fault>& faults, const GoodRun& good)
        : run_(run), faults_(faults), good_(good), consequences_(consequencesOf(faults, good.outcome)) {}

    std::vector<std::string> problems() {
        const auto rows = readRows();
        checkEnd();
        checkRows(rows);
        checkServed();
        if (faults_.size() == 1 && run_.end().isFinished()) {
            checkDone(rows);
            checkLog(rows);
        }
        return problems_;
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
            return run_.rows();
        } catch (const std::exception& error) {
            add(error.what());
            return {};
        }
    }

    void checkEnd() {
        const bool mayEnd =
            std::any_of(consequences_.begin(), consequences_.end(), [](const auto& row) { return row.mayEnd; });
        if (!run_.end().isFinished() && !mayEnd) {
            add(run_.end().how());
        }
        const bool mayLeak = std::any_of(faults_.begin(), faults_.end(),
                                         [](const Fault& fault) { return releasesAnObject(fault.function); });
        if (!run_.outcome().leaks.empty() && !mayLeak) {
            add("leak of " + run_.outcome().leaks.front());
        }
    }

    void checkRows(const StoredRows& rows) {
        for (const auto& [accountId, row] : rows) {
            if (!isIn(good_.rowsBefore, accountId, row) && !isIn(good_.rowsAfter, accountId, row)) {
                add("a row that nobody wrote: " + row);
            }
        }
        for (const auto& [accountId, row] : good_.rowsBefore) {
            if (good_.rowsAfter.count(accountId) != 0 && rows.count(accountId) == 0) {
                add("a lost row: " + row);
            }
        }
    }

    void checkServed() {
        const auto& flaw = run_.outcome().nextRequest;
        if (flaw.empty()) {
            return;
        }
        Served expected = Served::AtOnce;
        for (const auto& row : consequences_) {
            expected = std::max(expected, row.served);
        }
        // a process that ended, or ends with the story, was not asked
        const bool wasAsked = run_.end().isFinished() && flaw != "not sent";
        if (run_.requestAfterRestart().empty()) {
            if (wasAsked && expected == Served::AtOnce) {
                add("the next good request is served only after a restart: " + flaw);
            }
        } else if (const auto last = run_.requestAfterRestart(true); !last.empty()) {
            add("the next good request is never served: " + last);
        } else if (expected != Served::AfterLastDeletion) {
            add("the next good request is served only after the last deletion: " + flaw);
        }
    }

    /// What the failing call leaves done.
    void checkDone(const StoredRows& rows) {
        unsigned keeps = Calls;
        for (const auto& row : consequences_) {
            keeps &= row.keeps;
        }
        const auto& good = good_.outcome;
        const auto& bad = run_.outcome();
        const auto keep = [&](unsigned what, const char* name, const Lines& done, const Lines& doneNow) {
            if ((keeps & what) == what && done != doneNow) {
                addOther(name, done, doneNow);
            }
        };
        keep(Calls, "calls", good.calls, bad.calls);
        keep(SettingNames, "set rules", namesOf(good.settings()), namesOf(bad.settings()));
        keep(Settings, "values of rules", linesOf(good.settings()), linesOf(bad.settings()));
        keep(Keys, "keys", good.keys(), bad.keys());
        keep(Launches, "launches", good.launches, bad.launches);
        const auto others = otherRows(rows, good_.rowsAfter);
        const auto& fault = faults_.front();
        const bool isDatabaseCall = fault.nth != Fault::always && fault.function.rfind("sqlite", 0) == 0;
        if (others > 0 && ((keeps & Rows) == Rows || (isDatabaseCall && others > 1))) {
            add("other rows");
        }
    }

    void addOther(const std::string& name, const Lines& good, const Lines& bad) {
        const auto other = std::mismatch(good.begin(), good.end(), bad.begin(), bad.end());
        add("other " + name + ": " + (other.first == good.end() ? "more" : *other.first) + " became " +
            (other.second == bad.end() ? "nothing" : *other.second));
    }

    void checkLog(const StoredRows& rows) {
        const auto& consequence = consequences_.front();
        const int code = faults_.front().code;
        if (code == 0) {
            return;
        }
        const auto& lines = run_.outcome().warnings;
        const auto isNew = [&](const std::string& line) {
            const auto& usual = good_.outcome.warnings;
            return std::find(usual.begin(), usual.end(), line) == usual.end();
        };
        if (rows != good_.rowsAfter && !consequence.mayEnd && std::none_of(lines.begin(), lines.end(), isNew)) {
            add("nobody tells of the row that is not stored");
        }
        const auto isExpected = [&](const std::string& line) { return isLogOf(consequence, code, line); };
        if (*consequence.log != '\0' && std::none_of(lines.begin(), lines.end(), isExpected)) {
            add(std::string("no log line ") + consequence.log + (lines.empty() ? "" : " but " + lines.front()));
        }
    }

    StoryRun& run_;
    const std::vector<Fault>& faults_;
    const GoodRun& good_;
    const std::vector<Consequence> consequences_;
    std::vector<std::string> problems_;
};

} // namespace

std::vector<std::string> problemsOf(StoryRun& run, const std::vector<Fault>& faults, const GoodRun& good) {
    return Check(run, faults, good).problems();
}
