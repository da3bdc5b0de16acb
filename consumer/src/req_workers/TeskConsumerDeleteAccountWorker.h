#ifndef TESK_CONSUMER_DELETE_ACCOUNT_WORKER_H
#define TESK_CONSUMER_DELETE_ACCOUNT_WORKER_H

#include "req_workers/ITeskConsumerWorker.h"

/// Deletes an account: its argument is the account's decimal id.
class TeskConsumerDeleteAccountWorker : public ITeskConsumerWorker {
public:
    int process(const char* data) override;
};

#endif
