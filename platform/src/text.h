#ifndef PLATFORM_TEXT_H
#define PLATFORM_TEXT_H

#include <string>

namespace host {

/// A copy that a C caller releases with free().
char* copyForCaller(const std::string& text);

/// Whether a text can travel over the bus and into the settings store.
bool isUtf8(const std::string& text);

/// The text with every byte but ASCII letters and digits written as '_' and two hexadecimal digits, so that it can be
/// part of a bus name. Different texts stay different.
std::string escapedForBusName(const std::string& text);

} // namespace host

#endif
