#include <algorithm>
#include <vector>

#include "combinations.h"
#include "rules/TeskPolicyMerge.h"

namespace {

/// An account's password rules, and how many points they are worth.
struct Candidate {
    std::shared_ptr<TeskPolicyData> account;
    bool takesPart = false;
    std::int64_t points = 0;
};
using Candidates = std::vector<Candidate>;

/// A point for each character, one for the ban of simple passwords; an alphanumeric rule is worth sixteen points, and
/// one for each complex character.
Candidate candidate(const TeskPolicyData& data) {
    Candidate made;
    made.account = std::make_shared<TeskPolicyData>(data);
    made.takesPart = data.devicePasswordEnabled != 0;
    made.points = std::int64_t{data.minDevicePasswordLength} + (data.allowSimplePassword == 0 ? 1 : 0);
    if (data.alphanumericDevicePasswordRequired != 0) {
        made.points += std::int64_t{data.minDevicePasswordComplexCharacters} + 16;
    }
    return made;
}

/// An account with this id for each combination of these values.
Candidates candidates(int accountId, const std::vector<int>& enabled, const std::vector<int>& flags,
                      const std::vector<int>& lengths, const std::vector<int>& complexCharacters) {
    Candidates all;
    TeskPolicyData data;
    data.accountId = accountId;
    for (const int password : enabled) {
        data.devicePasswordEnabled = password;
        for (const int simple : flags) {
            data.allowSimplePassword = simple;
            for (const int alphanumeric : flags) {
                data.alphanumericDevicePasswordRequired = alphanumeric;
                for (const int length : lengths) {
                    data.minDevicePasswordLength = length;
                    for (const int complex : complexCharacters) {
                        data.minDevicePasswordComplexCharacters = complex;
                        all.push_back(candidate(data));
                    }
                }
            }
        }
    }
    return all;
}

using Group = std::vector<const Candidate*>;

/// The id of the last of those that have the most points; 0 when nobody who takes part has 0 or more.
int winnerOf(const Group& group) {
    std::int64_t most = 0;
    for (const auto* member : group) {
        most = member->takesPart ? std::max(most, member->points) : most;
    }
    const auto winner = std::find_if(group.rbegin(), group.rend(), [&](const Candidate* member) {
        return member->takesPart && member->points == most;
    });
    return winner == group.rend() ? 0 : (*winner)->account->accountId;
}

int chosenOf(const Group& group) {
    TeskPolicyDataList list;
    for (const auto* member : group) {
        list.push_back(member->account);
    }
    return TeskPolicyMerge::passwordEnforcingAccountId(list);
}

void tryGroup(const Group& group, Combinations& combinations) {
    const int chosen = chosenOf(group);
    combinations.add(chosen == winnerOf(group), [&] {
        std::string text;
        for (const auto* member : group) {
            text += std::to_string(member->points) + (member->takesPart ? " " : " (takes no part) ");
        }
        return text + "points: " + std::to_string(chosen) + " instead of " + std::to_string(winnerOf(group));
    });
}

TEST(EnforcingAccountCombinations, ThePointsOfEveryAccountAreItsScore) {
    Combinations combinations(1000);
    for (const auto& one : candidates(1, {1}, {-1, 0, 1, 2}, {smallest, -1, 0, 1, 4, 15, 16, 17, largest},
                                      {smallest, -1, 0, 1, 2, 3, 4, largest})) {
        const auto score = TeskPolicyMerge::passwordScore(*one.account);
        combinations.add(score == one.points,
                         [&] { return std::to_string(score) + " instead of " + std::to_string(one.points); });
    }
}

TEST(EnforcingAccountCombinations, TheLastOfThreeWithTheMostPointsIsChosen) {
    const auto accountsOf = [](int accountId) {
        return candidates(accountId, {0, 1}, {0, 1}, {-1, 0, 4, 5, 20}, {-1, 0, 3});
    };
    const auto firsts = accountsOf(7);
    const auto seconds = accountsOf(3);
    const auto thirds = accountsOf(5);
    Combinations combinations(1700000);
    for (const auto& first : firsts) {
        for (const auto& second : seconds) {
            for (const auto& third : thirds) {
                tryGroup({&first, &second, &third}, combinations);
            }
        }
    }
}

TEST(EnforcingAccountCombinations, TheSameHoldsForTwoAtTheirLimits) {
    const auto accountsOf = [](int accountId) {
        return candidates(accountId, {-1, 0, 1}, {0, 1}, {smallest, -17, -16, -1, 0, largest}, {smallest, 0, largest});
    };
    const auto firsts = accountsOf(2);
    const auto seconds = accountsOf(1);
    Combinations combinations(40000);
    tryGroup({}, combinations);
    for (const auto& first : firsts) {
        tryGroup({&first}, combinations);
        for (const auto& second : seconds) {
            tryGroup({&first, &second}, combinations);
        }
    }
}

/// The accounts of a group but one.
Group without(Group group, std::size_t at) {
    group.erase(group.begin() + static_cast<std::ptrdiff_t>(at));
    return group;
}

TEST(EnforcingAccountCombinations, ThatAnotherAccountGoesChangesNothing) {
    const auto accountsOf = [](int accountId) { return candidates(accountId, {0, 1}, {0, 1}, {0, 4}, {0, 3}); };
    const auto firsts = accountsOf(1);
    const auto seconds = accountsOf(2);
    const auto thirds = accountsOf(3);
    Combinations combinations(60000);
    for (const auto& first : firsts) {
        for (const auto& second : seconds) {
            for (const auto& third : thirds) {
                const Group group{&first, &second, &third};
                const int chosen = chosenOf(group);
                for (std::size_t at = 0; at < group.size(); ++at) {
                    const bool goes = group[at]->account->accountId == chosen;
                    combinations.add(goes || chosenOf(without(group, at)) == chosen,
                                     [&] { return std::to_string(chosen) + " is no longer chosen"; });
                }
            }
        }
    }
}

} // namespace
