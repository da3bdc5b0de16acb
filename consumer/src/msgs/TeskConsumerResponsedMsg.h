#ifndef TESK_CONSUMER_RESPONSED_MSG_H
#define TESK_CONSUMER_RESPONSED_MSG_H

#include <string>

#include "msgs/TeskConsumerMsg.h"

/// A message of the mail application.
class TeskConsumerResponsedMsg : public TeskConsumerMsg {
public:
    /// Reads the message from its whole JSON text, as far as that is readable. Returns 0, or -1 for a text that is not
    /// a message of this kind.
    virtual int fromJson(const std::string& text) = 0;

    /// Does what the message asks for. Returns 0.
    virtual int process() = 0;
};

#endif
