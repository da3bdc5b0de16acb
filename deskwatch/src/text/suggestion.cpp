#include "text/suggestion.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace deskwatch {
namespace {

/// Longer words are nobody's slip of the finger.
constexpr std::size_t longestWord = 100;

char lower(char character) {
    return static_cast<char>(std::tolower(static_cast<unsigned char>(character)));
}

/// How many characters must be inserted, removed or replaced; upper and lower case are the same.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < one.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < other.size(); ++j) {
            const std::size_t replaced = diagonal + (lower(one[i]) == lower(other[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::optional<std::string> nearest(std::string_view word, const std::vector<std::string_view>& candidates) {
    if (word.size() > longestWord) {
        return std::nullopt;
    }
    std::size_t least = word.size() / 3 + 1; // a third of the word may be wrong
    std::optional<std::string> found;
    for (const auto candidate : candidates) {
        const auto longer = std::max(word.size(), candidate.size()) - std::min(word.size(), candidate.size());
        if (longer >= least) {
            continue; // at least so many characters are inserted or removed; quick for a file full of strange words
        }
        if (const auto changes = distance(word, candidate); changes < least) {
            least = changes;
            found = std::string(candidate);
        }
    }
    return found;
}

std::string didYouMean(std::string_view word, const std::vector<std::string_view>& candidates) {
    const auto candidate = nearest(word, candidates);
    return candidate ? "; did you mean \"" + *candidate + "\"?" : "";
}

} // namespace deskwatch
