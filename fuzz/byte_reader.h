#ifndef FUZZ_BYTE_READER_H
#define FUZZ_BYTE_READER_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace fuzz {

/// Makes decisions of an input's bytes, from the first to the last; when they are used up, every number is 0 and every
/// text empty. Equal bytes make equal decisions with every compiler.
class ByteReader {
public:
    ByteReader(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    bool isEmpty() const { return next_ == end_; }

    std::uint8_t byte() { return isEmpty() ? std::uint8_t{0} : *next_++; }

    bool flag() { return byte() % 2 != 0; }

    /// A number from 0 to one less than `count`, which is 256 at most.
    std::size_t below(std::size_t count) { return byte() % count; }

    template <class Choice, std::size_t count>
    const Choice& oneOf(const std::array<Choice, count>& choices) {
        return choices[below(count)];
    }

    /// Any number.
    std::int32_t number() {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i) {
            bits = bits * 256 + byte();
        }
        return static_cast<std::int32_t>(bits);
    }

    /// A text of up to 255 bytes.
    std::string text() {
        const std::size_t length = byte();
        return take(length);
    }

    /// Everything that is left.
    std::string rest() { return take(static_cast<std::size_t>(end_ - next_)); }

private:
    std::string take(std::size_t length) {
        const auto available = std::min(length, static_cast<std::size_t>(end_ - next_));
        const auto* const begin = next_;
        next_ += available;
        return {begin, next_};
    }

    const std::uint8_t* next_;
    const std::uint8_t* end_;
};

} // namespace fuzz

#endif
