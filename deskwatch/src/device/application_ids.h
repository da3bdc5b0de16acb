#ifndef DESKWATCH_APPLICATION_IDS_H
#define DESKWATCH_APPLICATION_IDS_H

#include <array>

/// The applications of a watch, and what they agree on.
namespace deskwatch::ids {

/// The service that enforces policies.
inline constexpr char service[] = "com.velmor.tesk-agent";

/// The mail application, which talks to the servers.
inline constexpr char mail[] = "com.velmor.quillon.consumer";

/// The home screen, from which the wearer opens applications.
inline constexpr char home[] = "com.velmor.hearth";

/// The popup that asks for a lock.
inline constexpr char popup[] = "com.velmor.tesk-popup";

/// The settings of the screen's lock.
inline constexpr char lockSettings[] = "com.velmor.veilpane-setting";

/// The popup that asks for encryption.
inline constexpr char encryptionPopup[] = "com.velmor.dialset.encryption";

/// The settings of the watch, where the menu for encryption is.
inline constexpr char encryptionSettings[] = "com.velmor.dialset.service";

/// All that stand beside the service.
inline constexpr std::array<const char*, 5> companions{popup, lockSettings, encryptionPopup, encryptionSettings, mail};

/// The message port of the service and of the mail application.
inline constexpr char policyPort[] = "eas-itpolicy-port";

} // namespace deskwatch::ids

#endif
