#include "explain/arriving_message.h"

#include <memory>

#include "msgs/TeskConsumerPolicyStorage.h"
#include "msgs/TeskConsumerRespMsgFactory.h"

namespace {

/// What the message that is being read would do. The service's messages say what they do by calling functions, which
/// have no room for an object of ours.
thread_local deskwatch::Arrival* reading = nullptr;

} // namespace

// In the service these store and enforce; here a message's wishes are only noted.

void TeskConsumerPolicyStorage::storeAndApply(const TeskConsumerPolicyInfoList& policies) {
    for (const auto& policy : policies) {
        if (policy) {
            reading->policies.push_back(*policy->getPolicyData());
        }
    }
    reading->isApplied = true;
}

void TeskConsumerPolicyStorage::wipeDevice() {
    reading->isWipe = true;
}

deskwatch::Arrival deskwatch::readArrival(const std::string& source, const std::string& text) {
    Arrival arrival;
    arrival.source = source;
    const std::unique_ptr<TeskConsumerResponsedMsg> message(TeskConsumerRespMsgFactory::createResponsedMsg(text));
    if (message == nullptr) {
        return arrival;
    }
    arrival.isKnown = true;
    reading = &arrival;
    message->process();
    reading = nullptr;
    return arrival;
}
