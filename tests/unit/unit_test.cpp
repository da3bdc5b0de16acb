#include "unit_test.h"

#include <algorithm>
#include <iostream>

#include "TeskConsumerDbMgr.h"

void UnitTest::TearDown() {
    EXPECT_EQ(platform.leaks(), Lines{});
    if (HasFailure()) {
        for (const auto& line : journal.all()) {
            std::cout << "  journal: " << line << '\n';
        }
    }
}

void UnitTest::store(std::initializer_list<TeskPolicyData> accounts) {
    for (const auto& data : accounts) {
        ASSERT_EQ(TeskConsumerDbMgr::getInstance()->insertPolicy(data), 0);
    }
    platform.devicePolicy.registerService();
    journal.clear();
}

int UnitTest::storedAccounts() {
    int count = 0;
    TeskConsumerDbMgr::getInstance()->getAllEasAccountCount(&count);
    return count;
}

std::size_t UnitTest::applications() const {
    const auto lines = journal.logsOf("applyPolicy");
    return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), "I Enter"));
}

UnitTest::Lines UnitTest::messages() const {
    Lines lines = journal.logs();
    const auto isTrace = [](const std::string& line) { return line == "I Enter" || line == "I Leave" || line == "I "; };
    lines.erase(std::remove_if(lines.begin(), lines.end(), isTrace), lines.end());
    return lines;
}

TeskPolicyData account(int accountId) {
    TeskPolicyData data;
    data.accountId = accountId;
    return data;
}

TeskPolicyData passwordAccount(int accountId) {
    auto data = account(accountId);
    data.devicePasswordEnabled = 1;
    return data;
}
