#ifndef TESK_CONSUMER_CHECK_ODE_WORKER_H
#define TESK_CONSUMER_CHECK_ODE_WORKER_H

#include "req_workers/ITeskConsumerWorker.h"

/// Asks the wearer for the device's encryption, once the lock is there. Its argument is not read.
class TeskConsumerCheckOdeWorker : public ITeskConsumerWorker {
public:
    int process(const char* data) override;
};

#endif
