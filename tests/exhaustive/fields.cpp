#include "fields.h"

#include <map>

#include "rules/TeskPolicyTable.h"

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

/// How strict a field's values are, and those that a sender has a reason to send.
struct Meaning {
    bool (*isWeaker)(Value, Value) = nullptr;
    Values usual{0, 1};
};

/// The fields that are enforced, by their columns.
const std::map<std::string, Meaning>& meanings() {
    static const std::map<std::string, Meaning> all{
        {"device_password_enabled", {demandsLess}},
        {"allow_simple_password", {allowsMore}},
        {"alphanumeric_device_password_required", {demandsLess}},
        {"min_device_password_complex_characters", {isLess, {0, 1, 2, 3, 4}}},
        {"min_device_password_length", {isLess, {0, 1, 3, 4, 5, 6, 7, 15, 16, 17}}},
        {"max_device_password_failed_attempts", {limitsLess, {0, 1, 3, 4, 9, 10, 11, 16}}},
        {"max_inactivity_time_device_lock", {limitsLess, {0, 1, 59, 60, 61, 900, 9999}}},
        {"device_password_expiration", {limitsLess, {0, 1, 2, 89, 90, 91, 730}}},
        {"device_password_history", {isLess, {0, 1, 2, 4, 5, 49, 50}}},
        {"require_device_encryption", {demandsLess}},
        {"allow_bluetooth", {isMore, {0, 1, 2}}},
        {"allow_popimap_email", {allowsMore}},
        {"allow_text_messaging", {allowsMore}},
        {"allow_wifi", {allowsMore}},
    };
    return all;
}

std::vector<Field> makeFields() {
    std::vector<Field> all;
    for (const auto& number : TeskPolicyTable::numbers) {
        const auto meaning = meanings().find(number.column);
        const auto [isWeaker, usual] = meaning != meanings().end() ? meaning->second : Meaning();
        all.push_back({number.column, number.field, isWeaker, usual, {-2, -1, 2, 3, smallest, largest}});
    }
    return all;
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
