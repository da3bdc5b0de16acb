#include <csignal>

#include "TeskConsumer.h"
#include "TeskConsumerLog.h"

int main(int argc, char** argv) {
    TESK_WARN("Hello World!");
    // a reader that went away is an error of the write, not the end of the service
    std::signal(SIGPIPE, SIG_IGN);
    auto* const consumer = TeskConsumer::getInstance();
    consumer->init();
    const int status = consumer->start(argc, argv);
    TESK_WARN("Goodbye World!");
    return status;
}
