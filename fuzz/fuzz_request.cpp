// A request as it arrives at the message port: the first line is its name, everything after it the argument, which is
// missing where there is no second line.

#include <optional>

#include "TeskConsumerIpcMgr.h"
#include "fuzz_target.h"
#include "fuzzed_watch.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = fuzz::textOf(data, size);
    const auto nameEnd = text.find('\n');
    const auto argument =
        nameEnd != std::string::npos ? std::optional<std::string>(text.substr(nameEnd + 1)) : std::nullopt;

    fuzz::FuzzedWatch watch;
    TeskConsumerIpcMgr::getInstance()->init();
    watch.request(text.substr(0, nameEnd), argument);
    watch.requireNothingLeaked();
    return 0;
}
