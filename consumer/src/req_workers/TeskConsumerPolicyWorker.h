#ifndef TESK_CONSUMER_POLICY_WORKER_H
#define TESK_CONSUMER_POLICY_WORKER_H

#include "req_workers/ITeskConsumerWorker.h"

/// Runs the message that the mail application sent: its argument is the message's JSON text.
class TeskConsumerPolicyWorker : public ITeskConsumerWorker {
public:
    int process(const char* data) override;
};

#endif
