#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "fields.h"
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
Names exceptions(const Law& law, bool withOddValues) {
    Names names;
    for (const auto& field : fields()) {
        forEachList(withOddValues ? field.allValues() : field.usual, 3, [&](const Values& values) {
            if (!law(field, values)) {
                names.insert(field.name);
            }
        });
    }
    return names;
}

/// Expects a law to hold for all fields but the named ones, and those to be real exceptions.
void expectLaw(const Law& law, const Names& usualExceptions, const Names& oddExceptions) {
    EXPECT_EQ(exceptions(law, false), usualExceptions) << "with values that a sender has a reason to send";
    EXPECT_EQ(exceptions(law, true), oddExceptions) << "with any values";
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

/// Whether the result is what an account has, or what a record has that no account has touched.
bool resultIsOneOfTheValues(const Field& field, const Values& values) {
    const Value result = merged(field, values);
    return result == TeskPolicyData().*field.place || std::find(values.begin(), values.end(), result) != values.end();
}

// The fields that do not keep a law, each group for its own reason.

/// The smallest history wins on purpose, although a longer one is stricter.
const Names history{"device_password_history"};

/// The first account whose value is not the start value decides for good. Flags have only one other value.
const Names demands{"alphanumeric_device_password_required", "device_password_enabled", "require_device_encryption"};
const Names permissions{"allow_popimap_email", "allow_simple_password", "allow_text_messaging", "allow_wifi"};

/// The start value counts as one that no account has touched: a minimum below it, or a level above it, takes its place,
/// and an account that has the start value itself makes the ones before it forgotten.
const Names minima{"min_device_password_complex_characters", "min_device_password_length"};
const Names levels{"allow_bluetooth"};

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

TEST(MergeLaws, ResultIsOneOfTheValues) {
    expectLaw(resultIsOneOfTheValues, {}, {});
}

/// Two accounts that have these values in two fields.
TeskPolicyDataList accountsWith(const Field& one, const Values& ones, const Field& other, const Values& others) {
    auto accounts = accountsWith(one, ones);
    (*accounts.front()).*other.place = others.front();
    (*accounts.back()).*other.place = others.back();
    return accounts;
}

TEST(MergeLaws, NoFieldDependsOnAnother) {
    const std::vector<Values> pairs{{0, 1}, {1, 0}, {2, 7}, {7, 2}, {0, 7}, {1, 1}};
    for (const auto& one : fields()) {
        for (const auto& other : fields()) {
            for (const auto& ones : pairs) {
                for (const auto& others : pairs) {
                    const auto result = TeskPolicyMerge::strongest(accountsWith(one, ones, other, others));
                    EXPECT_TRUE(&one == &other || result.*one.place == merged(one, ones))
                        << one.name << " depends on " << other.name;
                }
            }
        }
    }
}

TEST(EnforcingAccountLaws, AnotherAccountThatGoesChangesNothing) {
    TeskPolicyDataList some;
    for (const int flags : {0, 1, 2, 3, 4, 5, 6, 7}) {
        for (const int length : {-1, 0, 4, 17}) {
            TeskPolicyData account;
            account.accountId = static_cast<int>(some.size()) + 1;
            account.devicePasswordEnabled = flags % 2;
            account.allowSimplePassword = flags / 2 % 2;
            account.alphanumericDevicePasswordRequired = flags / 4;
            account.minDevicePasswordLength = length;
            some.push_back(std::make_shared<TeskPolicyData>(account));
        }
    }
    for (const auto& first : some) {
        for (const auto& second : some) {
            const auto alone = TeskPolicyMerge::passwordEnforcingAccountId({second});
            const auto chosen = TeskPolicyMerge::passwordEnforcingAccountId({first, second});
            EXPECT_TRUE(chosen == first->accountId || chosen == alone) << "of " << first->accountId << " and " << alone;
            for (const auto& third : some) {
                const auto ofThree = TeskPolicyMerge::passwordEnforcingAccountId({first, second, third});
                EXPECT_TRUE(ofThree == third->accountId || ofThree == chosen) << "of three";
            }
        }
    }
}

} // namespace
