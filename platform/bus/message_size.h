#ifndef TESK_MESSAGE_SIZE_H
#define TESK_MESSAGE_SIZE_H

#include <cstddef>
#include <numeric>
#include <string>

/// How large a message for a port may be, and how large one is: in bytes, as it travels on devices. Shared by the host
/// platform and by the tools that send messages.
namespace message_size {

/// What is 16 KiB after base64 encoding.
inline constexpr std::size_t limit = 12288;

/// A message without entries.
inline constexpr std::size_t empty = 32;

/// What an entry adds to a message.
inline std::size_t ofEntry(const std::string& key, const std::string& value) {
    constexpr std::size_t frame = 30;
    return frame + key.size() + value.size();
}

/// A message with these entries.
template <class Pairs>
std::size_t of(const Pairs& entries) {
    return std::accumulate(entries.begin(), entries.end(), empty,
                           [](std::size_t sum, const auto& entry) { return sum + ofEntry(entry.first, entry.second); });
}

} // namespace message_size

#endif
