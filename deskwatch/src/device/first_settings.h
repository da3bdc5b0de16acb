#ifndef DESKWATCH_FIRST_SETTINGS_H
#define DESKWATCH_FIRST_SETTINGS_H

#include <dconf.h>

#include <optional>
#include <string>

#include "c_owners.h"
#include "device/bus_client.h"

namespace deskwatch {

/// What the user has set as the lock of the screen, by its number in the settings store.
enum class Lock { None = 0, Pin = 1, Password = 2 };

/// The state of the watch that the settings store tells to applications. What is left out stays as the watch has it;
/// a fresh watch has no lock, is unencrypted and from the US, and its tutorial is over.
struct DeviceState {
    std::optional<Lock> lock;
    std::optional<bool> encrypted;
    /// ISO 3166 code.
    std::optional<std::string> country;
    /// Whether the tutorial of the first use is being shown. A boot ends it.
    std::optional<bool> tutorial;
};

using ChangesetOwner = c::Owner<DConfChangeset, dconf_changeset_unref>;

/// Changes the settings store of a device in one step. Throws std::runtime_error.
void writeChanges(const BusClient& bus, const ChangesetOwner& changes);

/// Brings the settings store of a device that boots into its first state, in one step: the keys under memory/ and the
/// faults are gone, a fresh watch (`fresh`) gets its keys, and what `state` names is set. Throws std::runtime_error.
void writeFirstSettings(const BusClient& bus, const DeviceState& state, bool fresh);

} // namespace deskwatch

#endif
