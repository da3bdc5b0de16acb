#include "req_workers/TeskConsumerPolicyWorker.h"

#include <memory>

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerRespMsgFactory.h"

int TeskConsumerPolicyWorker::process(const char* data) {
    const std::unique_ptr<TeskConsumerResponsedMsg> message(TeskConsumerRespMsgFactory::createResponsedMsg(data));
    if (!message) {
        TESK_WARN("TeskConsumerRespMsgFactory::createResponsedMsg() failed");
        return -1;
    }
    return message->process();
}
