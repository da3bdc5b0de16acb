#ifndef DESKWATCH_SUGGESTION_H
#define DESKWATCH_SUGGESTION_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace deskwatch {

/// The candidate that a mistyped word was probably meant to be; none when no candidate is near.
std::optional<std::string> nearest(std::string_view word, const std::vector<std::string_view>& candidates);

/// `; did you mean "CANDIDATE"?`, or nothing when no candidate is near.
std::string didYouMean(std::string_view word, const std::vector<std::string_view>& candidates);

} // namespace deskwatch

#endif
