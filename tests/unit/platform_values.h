#ifndef PLATFORM_VALUES_H
#define PLATFORM_VALUES_H

/// Numbers of the device that the platform's headers have no names for.
namespace quality {
inline constexpr int none = 0;
inline constexpr int oldStyle = 16; ///< of devices that were managed before the device policy manager came
inline constexpr int numeric = 32;
inline constexpr int numericOrSimple = 33;
inline constexpr int alphanumeric = 128;
inline constexpr int alphanumericOrSimple = 129;
} // namespace quality

namespace lock {
inline constexpr int none = 0;
inline constexpr int pin = 1;
inline constexpr int password = 2;
} // namespace lock

#endif
