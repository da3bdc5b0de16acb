#ifndef DESKWATCH_DEMANDS_H
#define DESKWATCH_DEMANDS_H

#include <optional>
#include <string>
#include <vector>

#include "explain/device_facts.h"

namespace deskwatch {

/// What one account wants of one device setting.
struct Demand {
    int account = 0;
    /// An index of deviceSettings.
    std::size_t setting = 0;
    int value = 0;
};

/// What each account by itself wants of the device. What an account leaves open is not among it.
std::vector<Demand> demandsOf(const DeviceFacts& facts);

/// Whether a value, none when there is none, lets through what the demand does not.
bool isWeaker(const Demand& demand, const std::optional<int>& value);

/// The demand and what is held instead, as a sentence.
std::string demandText(const Demand& demand, const std::optional<int>& held);

} // namespace deskwatch

#endif
