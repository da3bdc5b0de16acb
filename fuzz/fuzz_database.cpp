// A database that the service finds in its folder: any bytes.

#include <filesystem>
#include <fstream>

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "fuzz_target.h"
#include "fuzzed_service.h"
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
    fuzz::FuzzedService service;
    const std::filesystem::path path(service.databasePath());
    std::filesystem::create_directory(path.parent_path());
    std::ofstream(path, std::ios::binary) << fuzz::textOf(data, size);

    service.run([&] {
        service.request("req_update_policy", samples::indication(2, samples::hardened));
        service.request("req_delete_account", "2");
        service.request("chk_password_policy", "");
    });
    workOnAll();
    service.requireNothingLeaked();
    return 0;
}
