#include "msgs/TeskConsumerEasRemoteWipeIndMsg.h"

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerEnvelope.h"
#include "msgs/TeskConsumerPolicyStorage.h"

TeskConsumerEasRemoteWipeIndMsg::TeskConsumerEasRemoteWipeIndMsg() {
    msgType = TeskConsumerMsgType::remoteWipe;
}

TeskConsumerEasRemoteWipeIndMsg::~TeskConsumerEasRemoteWipeIndMsg() {
    TESK_INFO("");
}

int TeskConsumerEasRemoteWipeIndMsg::fromJson(const std::string& text) {
    const TeskConsumerTrace trace;
    const TeskConsumerEnvelope envelope(text);
    if (envelope.rootOf("eas-remote-wipe") == nullptr) {
        return -1;
    }
    message = text;
    return 0;
}

int TeskConsumerEasRemoteWipeIndMsg::process() {
    TeskConsumerPolicyStorage::wipeDevice();
    return 0;
}
