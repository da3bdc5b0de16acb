#include "TeskConsumerAccountMgr.h"

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerInstance.h"
#include "TeskConsumerLog.h"
#include "TeskConsumerPolicyMgr.h"

namespace {

int insertAccount(TeskConsumerDbMgr& dbMgr, TeskConsumerPolicyMgr& policyMgr, const TeskPolicyData& data,
                  const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    // the policy manager registers only while no account is stored, hence before the first insert
    int result = policyMgr.registerClient();
    if (result != 0) {
        TESK_WARN_AT(place, "Failed register DPM client: %d", result);
    }
    result = dbMgr.insertPolicy(data);
    if (result != 0) {
        TESK_WARN_AT(place, "_db_insert_policy_data failed: %d", result);
    }
    return result;
}

int updateAccount(TeskConsumerDbMgr& dbMgr, const TeskPolicyData& data,
                  const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    const int result = dbMgr.updatePolicy(data);
    if (result != 0) {
        TESK_WARN_AT(place, "_db_update_rule_data failed: %d", result);
    }
    return result;
}

} // namespace

TeskConsumerAccountMgr* TeskConsumerAccountMgr::getInstance() {
    return teskConsumerInstance<TeskConsumerAccountMgr>();
}

TeskConsumerAccountMgr::TeskConsumerAccountMgr() {
    TESK_INFO("");
}

TeskConsumerAccountMgr::~TeskConsumerAccountMgr() {
    TESK_INFO("");
}

int TeskConsumerAccountMgr::addAccount(const std::shared_ptr<TeskPolicyData>& data) {
    const TeskConsumerTrace trace;
    auto& dbMgr = *TeskConsumerDbMgr::getInstance();
    auto& policyMgr = *TeskConsumerPolicyMgr::getInstance();
    const bool isNew = dbMgr.checkPolicyByAccountId(data->accountId) == TESK_DB_NO_ROW;
    return isNew ? insertAccount(dbMgr, policyMgr, *data) : updateAccount(dbMgr, *data);
}

int TeskConsumerAccountMgr::delAccount(int accountId) {
    const TeskConsumerTrace trace;
    auto* const policyMgr = TeskConsumerPolicyMgr::getInstance();

    int result = TeskConsumerDbMgr::getInstance()->deletePolicyByAccountId(accountId);
    if (result != 0) {
        TESK_WARN("deletePolicyByAccountId failed: %d", result);
    }
    result = policyMgr->applyPolicy();
    if (result != 0) {
        TESK_WARN("applyPolicy failed: %d", result);
    }
    // the policy manager deregisters only once no account is stored, hence after the delete
    result = policyMgr->deregisterClient();
    if (result != 0) {
        TESK_WARN("Failed deregister DPM client: %d", result);
    }
    return result;
}
