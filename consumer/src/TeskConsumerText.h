#ifndef TESK_CONSUMER_TEXT_H
#define TESK_CONSUMER_TEXT_H

#include <cstdlib>
#include <memory>

struct TeskConsumerTextFreer {
    void operator()(char* text) const { std::free(text); }
};

/// Owns a text that the platform handed out to be released with free().
using TeskConsumerText = std::unique_ptr<char, TeskConsumerTextFreer>;

#endif
