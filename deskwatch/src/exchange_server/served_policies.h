#ifndef DESKWATCH_SERVED_POLICIES_H
#define DESKWATCH_SERVED_POLICIES_H

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "wbxml/wbxml_element.h"

namespace deskwatch {

/// The policies of a server's users, in files that may change at any time.
class ServedPolicies {
public:
    /// Each is `USER=FILE`, or `FILE` for everybody else. Throws std::runtime_error when a file does not hold one
    /// policy in a format that readPolicyFile knows, with its place, and for a user with two files.
    explicit ServedPolicies(const std::vector<std::string>& policies);

    /// The EASProvisionDoc of a user as it is now; none when the user has no policy. Throws std::runtime_error when the
    /// file cannot be read any more.
    std::optional<WbxmlElement> documentOf(const std::string& user) const;

    /// The users who have a file of their own.
    std::set<std::string> users() const;

    /// Whether there is a file for all other users.
    bool servesEverybody() const;

private:
    std::map<std::string, std::string> files_;
};

} // namespace deskwatch

#endif
