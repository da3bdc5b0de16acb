#ifndef DESKWATCH_PROTOCOL_VERSION_H
#define DESKWATCH_PROTOCOL_VERSION_H

#include <optional>
#include <string>
#include <vector>

namespace deskwatch {

/// The versions of the protocol, each by its number without the dot.
namespace protocol {
inline constexpr int v2_5 = 25;
inline constexpr int v12_0 = 120;
inline constexpr int v12_1 = 121;
inline constexpr int v14_0 = 140;
inline constexpr int v14_1 = 141;
inline constexpr int v16_0 = 160;
inline constexpr int v16_1 = 161;
} // namespace protocol

/// As servers write it: "14.1".
std::string versionText(int version);

/// The texts of all versions that are spoken here, the lowest first.
std::vector<std::string> versionTexts();

/// A version by its text; none for one that nobody here speaks.
std::optional<int> versionOf(const std::string& text);

/// The highest version of a server's list ("12.0,12.1,14.0") that is spoken here; none when there is none.
std::optional<int> highestCommonVersion(const std::string& offered);

} // namespace deskwatch

#endif
