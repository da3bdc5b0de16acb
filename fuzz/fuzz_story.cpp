// What happens to a watch, in any order: requests, answers, changed keys, restarts, failing calls. Whatever it was,
// afterwards the service works.

#include "fuzz_target.h"
#include "story.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Story story(fuzz::ByteReader(data, size));
    story.play();
    story.requireRecovery();
    return 0;
}
