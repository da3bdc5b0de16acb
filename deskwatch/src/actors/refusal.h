#ifndef DESKWATCH_REFUSAL_H
#define DESKWATCH_REFUSAL_H

#include <stdexcept>

namespace deskwatch {

/// The watch works, but does not let the wearer do what was asked. The text says what it demands.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace deskwatch

#endif
