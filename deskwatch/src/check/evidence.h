#ifndef DESKWATCH_EVIDENCE_H
#define DESKWATCH_EVIDENCE_H

#include <filesystem>

#include "check/findings.h"
#include "session/device_session.h"

namespace deskwatch {

/// Looks at a booted watch; starts nothing and changes nothing there.
Evidence readEvidence(const DeviceSession& session);

/// The same of a watch whose files are elsewhere: the session is on a copy of it.
Evidence readEvidence(const DeviceSession& session, const DeviceLayout& files);

/// Looks at what was copied from a device into a folder: `.tesk.db`, the service's database; `settings.json`, an object
/// with "settings" and "keys" as the status of a watch has them, and "administrator", true or false, where that is
/// known; and, where there is one, `log`. Throws std::runtime_error when the folder has no settings that can be read.
Evidence readEvidence(const std::filesystem::path& folder);

} // namespace deskwatch

#endif
