#ifndef TESK_CONSUMER_RESP_MSG_FACTORY_H
#define TESK_CONSUMER_RESP_MSG_FACTORY_H

#include <string>

#include "msgs/TeskConsumerResponsedMsg.h"

/// Builds the message that a text holds.
class TeskConsumerRespMsgFactory {
public:
    /// The message, read as far as its text is readable, or null when the text is no message or of an unknown kind. The
    /// caller owns it.
    static TeskConsumerResponsedMsg* createResponsedMsg(const std::string& text);
};

#endif
