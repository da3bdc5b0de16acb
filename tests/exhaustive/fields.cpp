#include "fields.h"

namespace {

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
    return {name, place, demandsLess, {0, 1}, {-1, 2, largest}};
}

Field permission(const std::string& name, Value TeskPolicyData::*place) {
    return {name, place, allowsMore, {0, 1}, {-1, 2, largest}};
}

Field limit(const std::string& name, Value TeskPolicyData::*place, const Values& usual) {
    return {name, place, limitsLess, usual, {-1, -2, smallest, largest}};
}

Field minimum(const std::string& name, Value TeskPolicyData::*place, const Values& usual) {
    return {name, place, isLess, usual, {-1, -2, smallest, largest}};
}

Field unmerged(const std::string& name, Value TeskPolicyData::*place) {
    return {name, place, nullptr, {0, 1}, {-1, 2, smallest, largest}};
}

using Data = TeskPolicyData;

std::vector<Field> makeFields() {
    return {
        unmerged("accountId", &Data::accountId),
        demand("devicePasswordEnabled", &Data::devicePasswordEnabled),
        permission("allowSimplePassword", &Data::allowSimplePassword),
        demand("alphanumericDevicePasswordRequired", &Data::alphanumericDevicePasswordRequired),
        minimum("minDevicePasswordComplexCharacters", &Data::minDevicePasswordComplexCharacters, {0, 1, 2, 3, 4}),
        minimum("minDevicePasswordLength", &Data::minDevicePasswordLength, {0, 1, 3, 4, 5, 6, 7, 15, 16, 17}),
        limit("maxDevicePasswordFailedAttempts", &Data::maxDevicePasswordFailedAttempts, {0, 1, 3, 4, 9, 10, 11, 16}),
        limit("maxInactivityTimeDeviceLock", &Data::maxInactivityTimeDeviceLock, {0, 1, 59, 60, 61, 900, 9999}),
        unmerged("passwordRecoveryEnabled", &Data::passwordRecoveryEnabled),
        limit("devicePasswordExpiration", &Data::devicePasswordExpiration, {0, 1, 2, 89, 90, 91, 730}),
        minimum("devicePasswordHistory", &Data::devicePasswordHistory, {0, 1, 2, 4, 5, 49, 50}),
        demand("requireDeviceEncryption", &Data::requireDeviceEncryption),
        unmerged("requireStorageCardEncryption", &Data::requireStorageCardEncryption),
        {"allowBluetooth", &Data::allowBluetooth, isMore, {0, 1, 2}, {-1, 3, 4, smallest, largest}},
        unmerged("allowBrowser", &Data::allowBrowser),
        unmerged("allowCamera", &Data::allowCamera),
        permission("allowPopimapEmail", &Data::allowPopimapEmail),
        unmerged("allowDesktopSync", &Data::allowDesktopSync),
        unmerged("allowInternetSharing", &Data::allowInternetSharing),
        unmerged("allowStorageCard", &Data::allowStorageCard),
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
