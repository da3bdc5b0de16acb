// The text of a message, read and carried out.

#include <memory>

#include "fuzz_target.h"
#include "fuzzed_watch.h"
#include "msgs/TeskConsumerRespMsgFactory.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const fuzz::FuzzedWatch watch;
    const std::unique_ptr<TeskConsumerResponsedMsg> message(
        TeskConsumerRespMsgFactory::createResponsedMsg(fuzz::textOf(data, size)));
    if (message) {
        message->process();
    }
    watch.requireNothingLeaked();
    return 0;
}
