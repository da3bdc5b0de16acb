#ifndef TESK_CONSUMER_REQ_FACTORY_H
#define TESK_CONSUMER_REQ_FACTORY_H

#include <memory>

#include "req_workers/ITeskConsumerWorker.h"

/// Finds the worker of a request.
class TeskConsumerReqFactory {
public:
    /// A new worker for the request of that name, or an empty pointer when there is none. The caller shares it.
    static std::shared_ptr<ITeskConsumerWorker> getWorker(const char* request);
};

#endif
