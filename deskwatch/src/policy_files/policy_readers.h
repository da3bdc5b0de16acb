#ifndef DESKWATCH_POLICY_READERS_H
#define DESKWATCH_POLICY_READERS_H

#include <optional>
#include <string>

#include "policy_files/policy_file.h"

namespace deskwatch {

// One reader for each format. Each returns nothing when a text is not of its format, and throws std::runtime_error with
// the place when it is and has a mistake. `file` is the name of the file in errors.

/// WBXML as captured: the bytes, or in hexadecimal or base64.
std::optional<PolicyFile> readWbxmlCapture(const std::string& file, const std::string& bytes);

/// JSON: a message of the mail application, `ConvertTo-Json` of Exchange's policies, or grommunio's.
std::optional<PolicyFile> readJsonPolicies(const std::string& file, const std::string& text);

/// `Export-Csv` of Exchange's policies.
std::optional<PolicyFile> readCsvPolicies(const std::string& file, const std::string& text);

/// `Format-List` of Exchange's policies, or assignments of the same names.
std::optional<PolicyFile> readListedPolicies(const std::string& file, const std::string& text);

/// Z-Push's policies.ini.
std::optional<PolicyFile> readIniPolicies(const std::string& file, const std::string& text);

} // namespace deskwatch

#endif
