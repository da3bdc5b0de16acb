// A database that the service finds in its folder: any bytes.

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "database_file.h"
#include "events.h"
#include "fuzz_target.h"
#include "fuzzed_watch.h"
#include "sample_policies.h"

namespace {

void requireResult(int result) {
    const bool isDocumented =
        result == 0 || result == TESK_DB_INVALID_ACCOUNT || result == TESK_DB_FAILURE || result == TESK_DB_NO_ROW;
    fuzz::require(isDocumented, "a database operation answers one of its codes");
}

void workOnAccount(TeskConsumerDbMgr& database, int accountId) {
    TeskPolicyData data;
    requireResult(database.checkPolicyByAccountId(accountId));
    requireResult(database.getPolicyDataByAccountId(accountId, data));
    data.accountId = accountId;
    data.displayName = "mobile";
    requireResult(database.insertPolicy(data));
    requireResult(database.updatePolicy(data));
    requireResult(database.deletePolicyByAccountId(accountId));
}

void workOnAll() {
    auto& database = *TeskConsumerDbMgr::getInstance();
    int count = 0;
    requireResult(database.getAllEasAccountCount(&count));
    TeskPolicyDataList accounts;
    requireResult(database.getPolicyDataList(accounts));
    TeskConsumerPolicyMgr::getInstance()->getStrongPolicy();
    workOnAccount(database, 1);
    workOnAccount(database, accounts.empty() ? 999 : accounts.back()->accountId);
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::FuzzedWatch watch;
    harness::writeDatabase(watch.databasePath(), fuzz::textOf(data, size));

    watch.runOnce([&] {
        harness::policyArrives(2, samples::hardened)(watch);
        harness::accountIsRemoved("2")(watch);
        harness::passwordCheckIsAskedFor()(watch);
    });
    workOnAll();
    watch.requireNothingLeaked();
    return 0;
}
