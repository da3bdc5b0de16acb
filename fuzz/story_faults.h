#ifndef FUZZ_STORY_FAULTS_H
#define FUZZ_STORY_FAULTS_H

#include "byte_reader.h"
#include "faults.h"

namespace fuzz {

/// Has one function of the platform fail, always or at one of its next calls, with a code that it can answer. Functions
/// that release something are left alone: what they refuse to take back is no fault of the service.
void chooseFault(ByteReader& bytes, fake::Faults& faults);

} // namespace fuzz

#endif
