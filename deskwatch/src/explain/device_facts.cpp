#include "explain/device_facts.h"

#include <algorithm>

#include "rules/TeskPolicyTable.h"

namespace deskwatch {
namespace {

const Value* columnOf(const StoredAccount& account, const char* column) {
    const auto found = std::find_if(account.begin(), account.end(),
                                    [column](const NamedValue& value) { return value.name == column; });
    return found != account.end() ? &found->value : nullptr;
}

std::shared_ptr<TeskPolicyData> policyRecord(const StoredAccount& account) {
    auto record = std::make_shared<TeskPolicyData>();
    for (const auto& number : TeskPolicyTable::numbers) {
        const int* value = std::get_if<int>(columnOf(account, number.column));
        (*record).*number.field = value != nullptr ? *value : 0; // as the service reads what is not a number
    }
    for (const auto& text : TeskPolicyTable::texts) {
        const auto* value = std::get_if<std::string>(columnOf(account, text.column));
        (*record).*text.field = value != nullptr ? *value : "";
    }
    return record;
}

} // namespace

TeskPolicyDataList policyRecords(const std::vector<StoredAccount>& accounts) {
    TeskPolicyDataList records;
    std::transform(accounts.begin(), accounts.end(), std::back_inserter(records), policyRecord);
    return records;
}

} // namespace deskwatch
