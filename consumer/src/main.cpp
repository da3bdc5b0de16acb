#include "TeskConsumer.h"
#include "TeskConsumerLog.h"

int main(int argc, char** argv) {
    TESK_WARN("Hello World!");
    auto* const consumer = TeskConsumer::getInstance();
    consumer->init();
    const int status = consumer->start(argc, argv);
    TESK_WARN("Goodbye World!");
    return status;
}
