#include "msgs/TeskConsumerInitRespMsg.h"

#include "TeskConsumerLog.h"
#include "msgs/TeskConsumerEnvelope.h"
#include "msgs/TeskConsumerJson.h"

TeskConsumerInitRespMsg::TeskConsumerInitRespMsg() {
    msgType = TeskConsumerMsgType::initRes;
}

int TeskConsumerInitRespMsg::fromJson(const std::string& text) {
    const TeskConsumerTrace trace;
    const TeskConsumerEnvelope envelope(text);
    JsonObject* const root = envelope.rootOf("email-init-res");
    if (root == nullptr) {
        return -1;
    }
    JsonObject* const param = TeskConsumerJson::objectMember(root, "param");
    if (param == nullptr) {
        TESK_ERROR("json_object_get_object_member failed");
        return -1;
    }
    // despite its name the member holds the accounts
    JsonArray* const list = TeskConsumerJson::arrayMember(param, "accountId");
    if (list == nullptr) {
        return -1;
    }
    accounts = teskReadAccounts(list);
    return 0;
}

int TeskConsumerInitRespMsg::process() {
    const TeskConsumerTrace trace;
    teskStoreAndApply(accounts);
    return 0;
}
