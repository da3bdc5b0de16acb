#ifndef TESK_CONSUMER_MSG_H
#define TESK_CONSUMER_MSG_H

#include <cstdint>

/// The kinds of messages, to be recognised in memory; nothing reads them.
namespace TeskConsumerMsgType {

inline constexpr std::int32_t none = 10000;
inline constexpr std::int32_t initRes = 10001;
inline constexpr std::int32_t accountInfo = 10002;
inline constexpr std::int32_t itPolicyInd = 10003;
inline constexpr std::int32_t remoteWipe = 10004;

} // namespace TeskConsumerMsgType

/// The root of all messages.
class TeskConsumerMsg {
public:
    TeskConsumerMsg() = default;
    virtual ~TeskConsumerMsg() = default;
    TeskConsumerMsg(const TeskConsumerMsg&) = delete;
    TeskConsumerMsg& operator=(const TeskConsumerMsg&) = delete;

    std::int32_t msgType = TeskConsumerMsgType::none;
};

#endif
