#ifndef I_TESK_CONSUMER_WORKER_H
#define I_TESK_CONSUMER_WORKER_H

/// Does what one kind of request asks for. Lives for one request.
class ITeskConsumerWorker {
public:
    ITeskConsumerWorker() = default;
    virtual ~ITeskConsumerWorker() = default;
    ITeskConsumerWorker(const ITeskConsumerWorker&) = delete;
    ITeskConsumerWorker& operator=(const ITeskConsumerWorker&) = delete;

    /// Takes the request's argument, a text that stays the caller's. Returns a status that nobody needs.
    virtual int process(const char* data) = 0;
};

#endif
