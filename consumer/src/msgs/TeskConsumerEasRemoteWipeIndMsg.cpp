#include "msgs/TeskConsumerEasRemoteWipeIndMsg.h"

#include "TeskConsumerLog.h"
#include "TeskConsumerPolicyMgr.h"
#include "msgs/TeskConsumerEnvelope.h"

TeskConsumerEasRemoteWipeIndMsg::TeskConsumerEasRemoteWipeIndMsg() {
    msgType = TESK_MSG_REMOTE_WIPE;
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
    TeskConsumerPolicyMgr::getInstance()->factoryReset();
    return 0;
}
