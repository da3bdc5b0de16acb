#include <algorithm>
#include <functional>
#include <set>
#include <vector>

#include "combinations.h"
#include "field.h"
#include "rules/TeskPolicyMerge.h"

namespace {

using Names = std::set<std::string>;

/// What is said of a field whose accounts have these values: whether it holds.
using Law = std::function<bool(const Field&, const Values&)>;

Value merged(const Field& field, const Values& values) {
    return TeskPolicyMerge::strongest(accountsWith(field, values)).*field.place;
}

Values with(Values values, std::size_t at, Value value) {
    values.insert(values.begin() + static_cast<std::ptrdiff_t>(at), value);
    return values;
}

Values without(Values values, std::size_t at) {
    values.erase(values.begin() + static_cast<std::ptrdiff_t>(at));
    return values;
}

/// The fields for which a law does not hold, in each combination of up to three accounts.
Names exceptions(const Law& law, bool withOddValues, Combinations& combinations) {
    Names names;
    for (const auto& field : fields()) {
        forEachList(withOddValues ? field.allValues() : field.usual, 3, [&](const Values& values) {
            combinations.add(true, [] { return ""; });
            if (!law(field, values)) {
                names.insert(field.name);
            }
        });
    }
    return names;
}

/// Expects a law to hold for all fields but the named ones, and those to be real exceptions.
void expectLaw(const Law& law, const Names& usualExceptions, const Names& oddExceptions) {
    Combinations combinations(10000);
    EXPECT_EQ(exceptions(law, false, combinations), usualExceptions)
        << "with values that a sender has a reason to send";
    EXPECT_EQ(exceptions(law, true, combinations), oddExceptions) << "with any values";
}

/// Whether the account at each place makes the policy of the others no weaker.
bool noAccountWeakens(const Field& field, const Values& values) {
    for (std::size_t at = 0; field.isWeaker && at < values.size(); ++at) {
        if (field.isWeaker(merged(field, values), merged(field, without(values, at)))) {
            return false;
        }
    }
    return true;
}

bool everyAccountIsSatisfied(const Field& field, const Values& values) {
    const Value strong = merged(field, values);
    return !field.isWeaker ||
           std::none_of(values.begin(), values.end(), [&](Value value) { return field.isWeaker(strong, value); });
}

bool deletionUndoesAddition(const Field& field, const Values& values) {
    auto accounts = accountsWith(field, values);
    const Value before = TeskPolicyMerge::strongest(accounts).*field.place;
    for (const Value value : field.allValues()) {
        accounts.push_back(accountsWith(field, {value}).front());
        TeskPolicyMerge::strongest(accounts);
        accounts.pop_back();
        if (TeskPolicyMerge::strongest(accounts).*field.place != before) {
            return false;
        }
    }
    return true;
}

bool equalAccountChangesNothing(const Field& field, const Values& values) {
    for (const Value value : values) {
        for (std::size_t at = 0; at <= values.size(); ++at) {
            if (merged(field, with(values, at, value)) != merged(field, values)) {
                return false;
            }
        }
    }
    return true;
}

bool orderDoesNotMatter(const Field& field, const Values& values) {
    Values order = values;
    std::sort(order.begin(), order.end());
    do {
        if (merged(field, order) != merged(field, values)) {
            return false;
        }
    } while (std::next_permutation(order.begin(), order.end()));
    return true;
}

bool mergingAgainChangesNothing(const Field& field, const Values& values) {
    const Value once = merged(field, values);
    return merged(field, {once}) == once;
}

bool mergedPolicyStandsForItsAccounts(const Field& field, const Values& values) {
    if (values.size() != 3) {
        return true;
    }
    return merged(field, {merged(field, {values[0], values[1]}), values[2]}) == merged(field, values) &&
           merged(field, {values[0], merged(field, {values[1], values[2]})}) == merged(field, values);
}

// The fields that do not keep a law, each group for its own reason.

/// The smallest history wins on purpose, although a longer one is stricter.
const Names history{"devicePasswordHistory"};

/// The first account whose value is not the start value decides for good. Flags have only one other value.
const Names demands{"alphanumericDevicePasswordRequired", "devicePasswordEnabled", "requireDeviceEncryption"};
const Names permissions{"allowPopimapEmail", "allowSimplePassword", "allowTextMessaging", "allowWifi"};

/// The start value counts as one that no account has touched: a minimum below it, or a level above it, takes its place,
/// and an account that has the start value itself makes the ones before it forgotten.
const Names minima{"minDevicePasswordComplexCharacters", "minDevicePasswordLength"};
const Names levels{"allowBluetooth"};

Names together(const std::vector<Names>& groups) {
    Names all;
    for (const auto& group : groups) {
        all.insert(group.begin(), group.end());
    }
    return all;
}

TEST(MergeLaws, NoAccountWeakensThePolicyOfTheOthers) {
    expectLaw(noAccountWeakens, history, together({history, permissions, minima, levels}));
}

TEST(MergeLaws, EveryAccountIsSatisfied) {
    expectLaw(everyAccountIsSatisfied, history, together({history, permissions, minima, levels}));
}

TEST(MergeLaws, DeletionUndoesAddition) {
    expectLaw(deletionUndoesAddition, {}, {});
}

TEST(MergeLaws, EqualAccountChangesNothing) {
    expectLaw(equalAccountChangesNothing, {}, together({demands, permissions, minima, levels}));
}

TEST(MergeLaws, OrderDoesNotMatter) {
    expectLaw(orderDoesNotMatter, {}, together({demands, permissions, minima, levels}));
}

TEST(MergeLaws, MergingAgainChangesNothing) {
    expectLaw(mergingAgainChangesNothing, {}, {});
}

TEST(MergeLaws, MergedPolicyStandsForItsAccounts) {
    expectLaw(mergedPolicyStandsForItsAccounts, {}, together({minima, levels}));
}

} // namespace
