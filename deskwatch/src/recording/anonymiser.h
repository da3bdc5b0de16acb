#ifndef DESKWATCH_ANONYMISER_H
#define DESKWATCH_ANONYMISER_H

#include <map>
#include <string>
#include <utility>

#include "recording/bus_trace.h"

namespace deskwatch {

/// Replaces the names of accounts in the lines of a recording, each by the same other name wherever it stands.
///
/// It learns a name where one is stored, or is the value of a member "accountName" or "displayName" of a message; from
/// then on every text that is the name, and every name of at least `shortestPart` characters within a text, is
/// replaced.
class Anonymiser {
public:
    /// Shorter names are often parts of other words.
    static constexpr std::size_t shortestPart = 5;

    /// The line without names.
    TraceEvent anonymised(TraceEvent line);

private:
    using Name = std::pair<const std::string, std::string>;

    void learnStore(const TraceEvent& store);
    void learnMembers(const std::string& text);
    void learn(const std::string& name);
    void replaceIn(TraceEvent& value) const;
    std::string replacedInLiterals(const std::string& text) const;
    std::string replaced(const std::string& text) const;
    const Name* nameAt(const std::string& text, std::size_t at) const;

    std::map<std::string, std::string> names_;
};

} // namespace deskwatch

#endif
