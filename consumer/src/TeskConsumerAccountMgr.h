#ifndef TESK_CONSUMER_ACCOUNT_MGR_H
#define TESK_CONSUMER_ACCOUNT_MGR_H

#include <memory>

#include "rules/TeskPolicyData.h"

/// The one place where an account's policy enters or leaves the service.
class TeskConsumerAccountMgr {
public:
    /// The process's one instance.
    static TeskConsumerAccountMgr* getInstance();

    TeskConsumerAccountMgr();
    virtual ~TeskConsumerAccountMgr();
    TeskConsumerAccountMgr(const TeskConsumerAccountMgr&) = delete;
    TeskConsumerAccountMgr& operator=(const TeskConsumerAccountMgr&) = delete;

    /// Stores a policy under its account id; enforces nothing. Returns the database's result.
    int addAccount(const std::shared_ptr<TeskPolicyData>& data);

    /// Removes an account and enforces what the others demand. Returns 0, or the error of ending the administration.
    int delAccount(int accountId);
};

#endif
