#ifndef TESK_CONSUMER_EAS_REMOTE_WIPE_IND_MSG_H
#define TESK_CONSUMER_EAS_REMOTE_WIPE_IND_MSG_H

#include <string>

#include "msgs/TeskConsumerResponsedMsg.h"

/// A server's order to wipe the device.
class TeskConsumerEasRemoteWipeIndMsg : public TeskConsumerResponsedMsg {
public:
    TeskConsumerEasRemoteWipeIndMsg();
    ~TeskConsumerEasRemoteWipeIndMsg() override;
    TeskConsumerEasRemoteWipeIndMsg(const TeskConsumerEasRemoteWipeIndMsg&) = delete;
    TeskConsumerEasRemoteWipeIndMsg& operator=(const TeskConsumerEasRemoteWipeIndMsg&) = delete;

    int fromJson(const std::string& text) override;

    /// Wipes the internal storage at once, whatever fromJson() has found.
    int process() override;

private:
    std::string message; ///< the text, once it has been accepted
};

#endif
