#ifndef PLATFORM_STRING_MAP_H
#define PLATFORM_STRING_MAP_H

#include <glib.h>

#include <list>
#include <string>
#include <utility>

namespace host {

/// An ordered map from string to string, and its form on the bus, an array of pairs (text_pairs.h). A value stays
/// at its address until it is replaced.
class StringMap {
public:
    using Pairs = std::list<std::pair<std::string, std::string>>;

    StringMap() = default;

    /// Reads the bus form; of a key that comes twice, the later value counts.
    explicit StringMap(GVariant* pairs);

    /// The bus form, a floating reference.
    GVariant* toVariant() const;

    /// The value of a key, or null.
    std::string* find(const std::string& key);

    /// Adds a pair at the end, in place of one with the same key.
    void set(const std::string& key, const std::string& value);

    /// Removes the pair of a key, if there is one.
    void remove(const std::string& key);

    const Pairs& pairs() const { return pairs_; }

private:
    Pairs pairs_;
};

} // namespace host

#endif
