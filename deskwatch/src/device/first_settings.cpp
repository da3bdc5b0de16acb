#include "device/first_settings.h"

#include "TeskConsumerKeys.h"

namespace deskwatch {
namespace {

constexpr std::chrono::seconds settingsTimeout{30};

GVariant* intValue(int value) {
    return g_variant_new_int32(value);
}
GVariant* textValue(const std::string& value) {
    return g_variant_new_string(value.c_str());
}

void setKey(const ChangesetOwner& changes, const std::string& key, GVariant* value) {
    dconf_changeset_set(changes.get(), ("/vconf/" + key).c_str(), value);
}

ChangesetOwner firstChanges(const DeviceState& state, bool fresh) {
    ChangesetOwner changes(dconf_changeset_new());
    dconf_changeset_set(changes.get(), "/faults/", nullptr);
    dconf_changeset_set(changes.get(), "/vconf/memory/", nullptr);
    setKey(changes, TeskConsumerKeys::tutorialInProgress, intValue(state.tutorial.value_or(false) ? 1 : 0));
    if (fresh) {
        // Keys that exist on every device, since the service could not watch one that nobody has made.
        for (const char* key : {TeskConsumerKeys::passwordPolicyApplied, TeskConsumerKeys::deviceEncryptionApplied,
                                TeskConsumerKeys::passwordInputFinished}) {
            setKey(changes, key, intValue(0));
        }
    }
    if (fresh || state.lock) {
        setKey(changes, TeskConsumerKeys::lockType, intValue(static_cast<int>(state.lock.value_or(Lock::None))));
    }
    if (fresh || state.encrypted) {
        setKey(changes, TeskConsumerKeys::cryptoState,
               textValue(state.encrypted.value_or(false) ? "encrypted" : "unencrypted"));
    }
    if (fresh || state.country) {
        setKey(changes, TeskConsumerKeys::countryIso, textValue(state.country.value_or("US")));
    }
    return changes;
}

} // namespace

void writeChanges(const BusClient& bus, const ChangesetOwner& changes) {
    // Straight to the writer of the device: the library's own client would look at the bus and the database that this
    // process's environment names.
    const c::VariantOwner serialised(g_variant_ref_sink(dconf_changeset_serialise(changes.get())));
    GVariant* bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, g_variant_get_data(serialised.get()),
                                                g_variant_get_size(serialised.get()), 1);
    bus.call({"ca.desrt.dconf", "/ca/desrt/dconf/Writer/user", "ca.desrt.dconf.Writer", "Change"},
             g_variant_new("(@ay)", bytes), settingsTimeout);
}

void writeFirstSettings(const BusClient& bus, const DeviceState& state, bool fresh) {
    writeChanges(bus, firstChanges(state, fresh));
}

} // namespace deskwatch
