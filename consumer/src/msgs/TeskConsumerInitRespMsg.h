#ifndef TESK_CONSUMER_INIT_RESP_MSG_H
#define TESK_CONSUMER_INIT_RESP_MSG_H

#include <string>

#include "msgs/TeskConsumerAccountInfoRespMsg.h"
#include "msgs/TeskConsumerResponsedMsg.h"

/// Lists the mail application's accounts when it starts. An account that it leaves out stays stored.
class TeskConsumerInitRespMsg : public TeskConsumerResponsedMsg {
public:
    TeskConsumerInitRespMsg();

    int fromJson(const std::string& text) override;
    int process() override;

private:
    TeskConsumerAccountInfoList accounts;
};

#endif
