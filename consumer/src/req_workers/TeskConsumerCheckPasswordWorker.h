#ifndef TESK_CONSUMER_CHECK_PASSWORD_WORKER_H
#define TESK_CONSUMER_CHECK_PASSWORD_WORKER_H

#include "req_workers/ITeskConsumerWorker.h"

/// Asks the wearer for the lock that the policies require. Its argument is not read.
class TeskConsumerCheckPasswordWorker : public ITeskConsumerWorker {
public:
    int process(const char* data) override;
};

#endif
