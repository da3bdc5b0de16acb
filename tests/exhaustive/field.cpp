#include "field.h"

#include <algorithm>
#include <set>

#include "combinations.h"

namespace {

/// The values behind the last one that is `mark`; all of them when none is.
Values behindLast(Value mark, const Values& values) {
    const auto last = std::find(values.rbegin(), values.rend(), mark);
    return {last.base(), values.end()};
}

using Winner = std::function<Value(const Values&)>;

/// The winner is the first that is not the value of a new record.
Winner firstOtherThan(Value start) {
    return [start](const Values& values) {
        const auto first = std::find_if(values.begin(), values.end(), [&](Value value) { return value != start; });
        return first == values.end() ? start : *first;
    };
}

/// The winner is the largest. Where none is above 0, a 0 makes the ones before it forgotten.
Value largestOf(const Values& values) {
    const std::set<Value> all(values.begin(), values.end());
    if (!all.empty() && *all.rbegin() > 0) {
        return *all.rbegin();
    }
    const auto rest = behindLast(0, values);
    return rest.empty() ? 0 : *std::max_element(rest.begin(), rest.end());
}

/// The winner is the smallest limit; 0 is none.
Value smallestLimitOf(const Values& values) {
    std::set<Value> limits(values.begin(), values.end());
    limits.erase(0);
    return limits.empty() ? 0 : *limits.begin();
}

/// The winner is the smallest level. Where none is below 2, a 2 makes the ones before it forgotten.
Value smallestLevelOf(const Values& values) {
    const std::set<Value> all(values.begin(), values.end());
    if (!all.empty() && *all.begin() < 2) {
        return *all.begin();
    }
    const auto rest = behindLast(2, values);
    return rest.empty() ? 2 : *std::min_element(rest.begin(), rest.end());
}

/// No account counts.
Winner always(Value start) {
    return [start](const Values& /*values*/) { return start; };
}

bool demandsLess(Value one, Value other) {
    return one == 0 && other != 0;
}

bool allowsMore(Value one, Value other) {
    return one != 0 && other == 0;
}

bool isLess(Value one, Value other) {
    return one < other;
}

bool isMore(Value one, Value other) {
    return one > other;
}

/// Of two limits, 0 being none.
bool limitsLess(Value one, Value other) {
    return one == 0 ? other != 0 : other != 0 && one > other;
}

Field demand(const std::string& name, Value TeskPolicyData::*place) {
    return {name, place, firstOtherThan(0), demandsLess, {0, 1}, {-1, 2, largest}};
}

Field permission(const std::string& name, Value TeskPolicyData::*place) {
    return {name, place, firstOtherThan(1), allowsMore, {0, 1}, {-1, 2, largest}};
}

Field limit(const std::string& name, Value TeskPolicyData::*place, const Values& usual) {
    return {name, place, smallestLimitOf, limitsLess, usual, {-1, -2, smallest, largest}};
}

Field minimum(const std::string& name, Value TeskPolicyData::*place, const Values& usual) {
    return {name, place, largestOf, isLess, usual, {-1, -2, smallest, largest}};
}

Field unmerged(const std::string& name, Value TeskPolicyData::*place, Value start) {
    return {name, place, always(start), nullptr, {0, 1}, {-1, 2, smallest, largest}};
}

using Data = TeskPolicyData;

std::vector<Field> makeFields() {
    return {
        unmerged("accountId", &Data::accountId, 0),
        demand("devicePasswordEnabled", &Data::devicePasswordEnabled),
        permission("allowSimplePassword", &Data::allowSimplePassword),
        demand("alphanumericDevicePasswordRequired", &Data::alphanumericDevicePasswordRequired),
        minimum("minDevicePasswordComplexCharacters", &Data::minDevicePasswordComplexCharacters, {0, 1, 2, 3, 4}),
        minimum("minDevicePasswordLength", &Data::minDevicePasswordLength, {0, 1, 3, 4, 5, 6, 7, 15, 16, 17}),
        limit("maxDevicePasswordFailedAttempts", &Data::maxDevicePasswordFailedAttempts, {0, 1, 3, 4, 9, 10, 11, 16}),
        limit("maxInactivityTimeDeviceLock", &Data::maxInactivityTimeDeviceLock, {0, 1, 59, 60, 61, 900, 9999}),
        unmerged("passwordRecoveryEnabled", &Data::passwordRecoveryEnabled, 1),
        limit("devicePasswordExpiration", &Data::devicePasswordExpiration, {0, 1, 2, 89, 90, 91, 730}),
        // a longer history is stricter, and yet the smallest wins
        {"devicePasswordHistory",
         &Data::devicePasswordHistory,
         smallestLimitOf,
         isLess,
         {0, 1, 2, 4, 5, 49, 50},
         {-1, -2, smallest, largest}},
        demand("requireDeviceEncryption", &Data::requireDeviceEncryption),
        unmerged("requireStorageCardEncryption", &Data::requireStorageCardEncryption, 0),
        {"allowBluetooth", &Data::allowBluetooth, smallestLevelOf, isMore, {0, 1, 2}, {-1, 3, 4, smallest, largest}},
        unmerged("allowBrowser", &Data::allowBrowser, 1),
        unmerged("allowCamera", &Data::allowCamera, 1),
        permission("allowPopimapEmail", &Data::allowPopimapEmail),
        unmerged("allowDesktopSync", &Data::allowDesktopSync, 1),
        unmerged("allowInternetSharing", &Data::allowInternetSharing, 1),
        unmerged("allowStorageCard", &Data::allowStorageCard, 1),
        permission("allowTextMessaging", &Data::allowTextMessaging),
        permission("allowWifi", &Data::allowWifi),
    };
}

} // namespace

Values Field::allValues() const {
    Values all = usual;
    all.insert(all.end(), odd.begin(), odd.end());
    return all;
}

const std::vector<Field>& fields() {
    static const std::vector<Field> all = makeFields();
    return all;
}

void forEachList(const Values& values, std::size_t most, const std::function<void(const Values&)>& visit) {
    std::vector<Values> lists{{}};
    for (std::size_t next = 0; next < lists.size(); ++next) {
        const Values list = lists[next];
        visit(list);
        for (const Value value : values) {
            if (list.size() < most) {
                lists.push_back(list);
                lists.back().push_back(value);
            }
        }
    }
}

TeskPolicyDataList accountsWith(const Field& field, const Values& values) {
    TeskPolicyDataList accounts;
    for (const Value value : values) {
        accounts.push_back(std::make_shared<TeskPolicyData>());
        (*accounts.back()).*field.place = value;
    }
    return accounts;
}

std::string textOf(const Values& values) {
    std::string text;
    for (const Value value : values) {
        text.append(text.empty() ? "" : ", ").append(std::to_string(value));
    }
    return text;
}
