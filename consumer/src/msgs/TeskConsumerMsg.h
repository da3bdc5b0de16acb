#ifndef TESK_CONSUMER_MSG_H
#define TESK_CONSUMER_MSG_H

#include <cstdint>

/// The kind of a message, to be recognised in memory; nothing reads it.
enum TeskConsumerMsgType : std::int32_t {
    TESK_MSG_NONE = 10000,
    TESK_MSG_INIT_RES = 10001,
    TESK_MSG_ACCOUNT_INFO = 10002,
    TESK_MSG_ITPOLICY_IND = 10003,
    TESK_MSG_REMOTE_WIPE = 10004
};

/// The root of all messages.
class TeskConsumerMsg {
public:
    TeskConsumerMsg() = default;
    virtual ~TeskConsumerMsg() = default;
    TeskConsumerMsg(const TeskConsumerMsg&) = delete;
    TeskConsumerMsg& operator=(const TeskConsumerMsg&) = delete;

    std::int32_t msgType = TESK_MSG_NONE;
};

#endif
