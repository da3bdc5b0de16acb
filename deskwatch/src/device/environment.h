#ifndef DESKWATCH_ENVIRONMENT_H
#define DESKWATCH_ENVIRONMENT_H

#include <map>
#include <string>
#include <vector>

namespace deskwatch {

/// The whole environment of a process, by variable name.
using Environment = std::map<std::string, std::string>;

/// What a watch takes over from the process that boots it: where programs and libraries are found, the language, and
/// the options of sanitizers and of the platform log. Nothing else of the caller reaches a watch.
Environment inheritedEnvironment();

/// `NAME=value` for each variable, the form that process functions take.
std::vector<std::string> assignments(const Environment& environment);

} // namespace deskwatch

#endif
