#include <cstddef>

#include "combinations.h"
#include "field.h"
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicyTable.h"

namespace {

constexpr std::size_t mostAccounts = 3;

TEST(MergeCombinations, EveryNumberOfTheRecordHasAWinner) {
    ASSERT_EQ(fields().size(), TeskPolicyTable::numbers.size());
    for (std::size_t index = 0; index < fields().size(); ++index) {
        EXPECT_EQ(fields()[index].place, TeskPolicyTable::numbers.at(index).field) << fields()[index].name;
    }
}

TEST(MergeCombinations, EveryFieldOfUpToThreeAccountsHasItsWinner) {
    Combinations combinations(13000);
    for (const auto& field : fields()) {
        forEachList(field.allValues(), mostAccounts, [&](const Values& values) {
            const Value merged = TeskPolicyMerge::strongest(accountsWith(field, values)).*field.place;
            combinations.add(merged == field.winner(values), [&] {
                return field.name + " of " + textOf(values) + " became " + std::to_string(merged) + ", not " +
                       std::to_string(field.winner(values));
            });
        });
    }
}

/// Two accounts that have these values in two fields.
TeskPolicyDataList accountsWith(const Field& one, const Values& ones, const Field& other, const Values& others) {
    auto accounts = accountsWith(one, ones);
    (*accounts.front()).*other.place = others.front();
    (*accounts.back()).*other.place = others.back();
    return accounts;
}

/// Calls back with each list of two of these values.
void forEachTwo(const Values& values, const std::function<void(const Values&)>& visit) {
    forEachList(values, 2, [&](const Values& list) {
        if (list.size() == 2) {
            visit(list);
        }
    });
}

void tryTogether(const Field& one, const Field& other, Combinations& combinations) {
    forEachTwo({0, 1, 2, 7}, [&](const Values& ones) {
        forEachTwo({0, 1, 2, 7}, [&](const Values& others) {
            const auto merged = TeskPolicyMerge::strongest(accountsWith(one, ones, other, others));
            const bool holds = merged.*one.place == one.winner(ones) && merged.*other.place == other.winner(others);
            combinations.add(holds, [&] { return one.name + " and " + other.name + " depend on each other"; });
        });
    });
}

TEST(MergeCombinations, NoFieldDependsOnAnother) {
    Combinations combinations(50000);
    for (auto one = fields().begin(); one != fields().end(); ++one) {
        for (auto other = std::next(one); other != fields().end(); ++other) {
            tryTogether(*one, *other, combinations);
        }
    }
}

TEST(MergeCombinations, NoFieldTouchesTheOthersOrTheNames) {
    Combinations combinations(150);
    const TeskPolicyData start;
    for (const auto& changed : fields()) {
        for (const Value value : changed.allValues()) {
            auto accounts = accountsWith(changed, {value});
            accounts.front()->accountName = "name";
            accounts.front()->displayName = "display name";
            const auto merged = TeskPolicyMerge::strongest(accounts);
            bool holds = merged.accountName.empty() && merged.displayName.empty();
            for (const auto& field : fields()) {
                holds = holds && (field.name == changed.name || merged.*field.place == start.*field.place);
            }
            combinations.add(holds,
                             [&] { return changed.name + " of " + std::to_string(value) + " touches another field"; });
        }
    }
}

} // namespace
