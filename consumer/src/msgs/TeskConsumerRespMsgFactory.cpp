#include "msgs/TeskConsumerRespMsgFactory.h"

#include <array>
#include <new>

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerAccountInfoRespMsg.h"
#include "msgs/TeskConsumerEasRemoteWipeIndMsg.h"
#include "msgs/TeskConsumerEnvelope.h"
#include "msgs/TeskConsumerInitRespMsg.h"
#include "msgs/TeskConsumerItPolicyIndMsg.h"

namespace {

template <class Message>
TeskConsumerResponsedMsg* newMessage() {
    return new (std::nothrow) Message;
}

struct MessageKind {
    const char* name;
    TeskConsumerResponsedMsg* (*create)();
};

constexpr std::array<MessageKind, 4> messageKinds{{
    {"email-init-res", newMessage<TeskConsumerInitRespMsg>},
    {"email-account-info", newMessage<TeskConsumerAccountInfoRespMsg>},
    {"email-itpolicy-ind", newMessage<TeskConsumerItPolicyIndMsg>},
    {"eas-remote-wipe", newMessage<TeskConsumerEasRemoteWipeIndMsg>},
}};

TeskConsumerResponsedMsg* newMessageOf(const std::string& kindName,
                                       const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    for (const auto& kind : messageKinds) {
        if (kindName == kind.name) {
            return kind.create();
        }
    }
    TESK_ERROR_AT(place, "this is not request msgId: %s", kindName.c_str());
    return nullptr;
}

} // namespace

TeskConsumerResponsedMsg* TeskConsumerRespMsgFactory::createResponsedMsg(const std::string& text) {
    TESK_INFO("Enter");
    const TeskConsumerEnvelope envelope(text); // lives until the message has read the text
    JsonObject* const root = envelope.root();
    if (root == nullptr) {
        return nullptr;
    }
    auto* const message = newMessageOf(TeskConsumerEnvelope::kindOf(root));
    if (message != nullptr) {
        message->fromJson(text);
    }
    TESK_INFO("Leave");
    return message;
}
