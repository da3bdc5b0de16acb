#ifndef DESKWATCH_POLICY_FILE_H
#define DESKWATCH_POLICY_FILE_H

#include <string>
#include <vector>

#include "provisioning/provisioning_document.h"

namespace deskwatch {

/// A policy as a file has it.
struct FilePolicy {
    /// What the file calls it; may be empty.
    std::string name;
    std::vector<ProvisioningElement> elements;
    /// Whether it comes from a message for the watch, which nobody reads as a client reads a server's policy.
    bool isMessage = false;
};

/// What a file brings.
struct PolicyFile {
    std::vector<FilePolicy> policies;
    /// What a server says beside the policy, where the file is its answer.
    std::vector<ServerNotice> notices;
    /// What was not taken as it stands.
    std::vector<std::string> remarks;
};

/// Reads the policies in a file, whatever its format: the content tells. `file` is its name in errors. Throws
/// std::runtime_error with the place when it is not valid or brings nothing.
PolicyFile readPolicyFile(const std::string& file, const std::string& bytes);

/// The only policy of a file, or the one of that name where a name is given. Throws std::runtime_error:
/// with the names if that policy does not exist or several are there to choose from.
const FilePolicy& chosenPolicy(const std::string& file, const PolicyFile& content, const std::string& name);

/// A notice in words, with its place.
std::string noticeText(const std::string& file, const ServerNotice& notice);

/// What a file says beside its policies, a line for each.
std::vector<std::string> noticeLines(const std::string& file, const PolicyFile& content);

} // namespace deskwatch

#endif
