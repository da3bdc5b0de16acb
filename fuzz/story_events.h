#ifndef FUZZ_STORY_EVENTS_H
#define FUZZ_STORY_EVENTS_H

#include "byte_reader.h"
#include "events.h"

namespace fuzz {

/// The next event of a story that an input tells: one of those that may happen to a watch, calls that fail from now on,
/// or calls that work again.
harness::Event nextEvent(ByteReader& bytes);

} // namespace fuzz

#endif
