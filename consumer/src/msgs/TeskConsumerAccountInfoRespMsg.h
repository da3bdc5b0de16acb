#ifndef TESK_CONSUMER_ACCOUNT_INFO_RESP_MSG_H
#define TESK_CONSUMER_ACCOUNT_INFO_RESP_MSG_H

#include <json-glib/json-glib.h>

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerItPolicyIndMsg.h"
#include "msgs/TeskConsumerResponsedMsg.h"

/// An account as the mail application lists it, with its policy set when it has one.
class TeskConsumerAccountInfo {
public:
    TeskConsumerAccountInfo() = default;
    virtual ~TeskConsumerAccountInfo();
    TeskConsumerAccountInfo(const TeskConsumerAccountInfo&) = delete;
    TeskConsumerAccountInfo& operator=(const TeskConsumerAccountInfo&) = delete;

    /// Reads an account's entry; the object stays the caller's.
    static std::shared_ptr<TeskConsumerAccountInfo> getInstanceFromJsonObject(JsonObject* account);

    std::string accountName;
    std::string displayName;
    std::int32_t accountId = 0;
    std::shared_ptr<TeskConsumerPolicyInfo> policyInfo; ///< empty for an account without a policy set
};

using TeskConsumerAccountInfoList = std::list<std::shared_ptr<TeskConsumerAccountInfo>>;

/// The accounts of an array of entries, in order.
TeskConsumerAccountInfoList teskReadAccounts(JsonArray* accounts);

/// Stores the policies of the accounts that carry one and enforces what the stored ones demand together.
void teskStoreAndApply(const TeskConsumerAccountInfoList& accounts,
                       const TeskConsumerPlace& place = TeskConsumerPlace::here());

/// Lists the mail application's accounts. An account that it leaves out stays stored.
class TeskConsumerAccountInfoRespMsg : public TeskConsumerResponsedMsg {
public:
    TeskConsumerAccountInfoRespMsg();
    ~TeskConsumerAccountInfoRespMsg() override;
    TeskConsumerAccountInfoRespMsg(const TeskConsumerAccountInfoRespMsg&) = delete;
    TeskConsumerAccountInfoRespMsg& operator=(const TeskConsumerAccountInfoRespMsg&) = delete;

    int fromJson(const std::string& text) override;
    int process() override;

private:
    TeskConsumerAccountInfoList accounts;
};

#endif
