#ifndef FUZZ_TARGET_H
#define FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <string>

/// What each target defines: handles one input and returns 0. Whatever is wrong ends the process.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace fuzz {

/// Ends the process with a message unless something holds that no input may change.
void require(bool holds, const std::string& what);

/// The bytes of an input as a text.
inline std::string textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace fuzz

#endif
