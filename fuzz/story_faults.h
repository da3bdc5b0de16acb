#ifndef FUZZ_STORY_FAULTS_H
#define FUZZ_STORY_FAULTS_H

#include "byte_reader.h"
#include "events.h"

namespace fuzz {

/// One function of the platform fails, always or at one of its next calls, with a code that it can answer. Functions
/// that release something are left alone: what they refuse to take back is no fault of the service.
harness::Event callFails(ByteReader& bytes);

} // namespace fuzz

#endif
