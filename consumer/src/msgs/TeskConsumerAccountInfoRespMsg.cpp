#include "msgs/TeskConsumerAccountInfoRespMsg.h"

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerEnvelope.h"
#include "msgs/TeskConsumerJson.h"
#include "msgs/TeskConsumerPolicyStorage.h"

TeskConsumerAccountInfo::~TeskConsumerAccountInfo() = default;

std::shared_ptr<TeskConsumerAccountInfo> TeskConsumerAccountInfo::getInstanceFromJsonObject(JsonObject* account) {
    const TeskConsumerTrace trace;
    auto info = std::make_shared<TeskConsumerAccountInfo>();
    info->accountId = TeskConsumerJson::intMember(account, "id");
    info->accountName = TeskConsumerJson::textMember(account, "accountName");
    info->displayName = TeskConsumerJson::textMember(account, "displayName");

    JsonObject* const policySet = TeskConsumerJson::objectMember(account, "policySet");
    if (policySet != nullptr) {
        info->policyInfo = TeskConsumerPolicyInfo::getInstanceFromJsonObject(policySet);
        info->policyInfo->accountId = info->accountId;
        info->policyInfo->accountName = info->accountName;
        info->policyInfo->displayName = info->displayName;
    }
    return info;
}

TeskConsumerAccountInfoList teskReadAccounts(JsonArray* accounts) {
    TeskConsumerAccountInfoList list;
    TeskConsumerJson::forEachObject(accounts, [&list](JsonObject* account) {
        list.push_back(TeskConsumerAccountInfo::getInstanceFromJsonObject(account));
    });
    return list;
}

void teskStoreAndApply(const TeskConsumerAccountInfoList& accounts, const TeskConsumerPlace& place) {
    TeskConsumerPolicyInfoList policies;
    for (const auto& account : accounts) {
        policies.push_back(account->policyInfo);
    }
    TeskConsumerPolicyStorage::storeAndApply(policies, place);
}

TeskConsumerAccountInfoRespMsg::TeskConsumerAccountInfoRespMsg() {
    TESK_INFO("");
    msgType = TeskConsumerMsgType::accountInfo;
}

TeskConsumerAccountInfoRespMsg::~TeskConsumerAccountInfoRespMsg() {
    TESK_INFO("");
}

int TeskConsumerAccountInfoRespMsg::fromJson(const std::string& text) {
    const TeskConsumerTrace trace;
    const TeskConsumerEnvelope envelope(text);
    JsonObject* const root = envelope.rootOf("email-account-info");
    if (root == nullptr) {
        return -1;
    }
    // despite its name the member holds the accounts
    JsonArray* const list = TeskConsumerJson::arrayMember(root, "accountId");
    if (list == nullptr) {
        return -1;
    }
    accounts = teskReadAccounts(list);
    return 0;
}

int TeskConsumerAccountInfoRespMsg::process() {
    const TeskConsumerTrace trace;
    teskStoreAndApply(accounts);
    return 0;
}
