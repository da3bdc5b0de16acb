#ifndef DESKWATCH_SETTING_VALUE_H
#define DESKWATCH_SETTING_VALUE_H

#include <dconf.h>

#include <string>

#include "session/value.h"

namespace deskwatch {

/// Reads one value of the watch's settings store; none when it is unset or neither a number nor a text.
Value readSetting(DConfClient* store, const std::string& path);

} // namespace deskwatch

#endif
