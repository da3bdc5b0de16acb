#include "settings_store.h"

#include <dconf.h>

#include "bus.h"
#include "bus_values.h"
#include "faults.h"
#include "guard.h"
#include "text.h"

namespace host {

SettingsStore& SettingsStore::get() {
    static SettingsStore store;
    Faults::get().load(store);
    return store;
}

SettingsStore::SettingsStore() {
    // dconf takes the process's shared bus connection, in a thread of its own. The connection must have been made
    // before, by the main loop's thread, or the news of its loss would come to that other thread.
    Bus::get();
    client_.reset(dconf_client_new());
    g_signal_connect(client_.get(), "changed", G_CALLBACK(onChanged), this);
}

SettingsStore::~SettingsStore() {
    g_signal_handlers_disconnect_by_data(client_.get(), this);
}

bool SettingsStore::isKey(const std::string& path) {
    return isUtf8(path) && dconf_is_key(path.c_str(), nullptr);
}

VariantPtr SettingsStore::read(const std::string& key) {
    return VariantPtr(dconf_client_read(client_.get(), key.c_str()));
}

std::optional<int> SettingsStore::readInt(const std::string& key) {
    return intOf(read(key).get());
}

std::optional<std::string> SettingsStore::readText(const std::string& key) {
    return textOf(read(key).get());
}

void SettingsStore::write(const std::string& key, GVariant* value) {
    g_autoptr(GError) error = nullptr;
    if (!dconf_client_write_sync(client_.get(), key.c_str(), value, nullptr, nullptr, &error)) {
        throw HostError("cannot write the setting " + key + ": " + error->message);
    }
}

void SettingsStore::remove(const std::string& key) {
    write(key, nullptr);
}

void SettingsStore::replaceFolder(const std::string& folder, const std::string& key, GVariant* value) {
    g_autoptr(GError) error = nullptr;
    g_autoptr(DConfChangeset) changes = dconf_changeset_new();
    // One by one: with the reset of a whole folder in the same change, the store drops the new value too.
    int count = 0;
    const TextListPtr names(dconf_client_list(client_.get(), folder.c_str(), &count));
    for (int i = 0; i < count; ++i) {
        dconf_changeset_set(changes, (folder + names.get()[i]).c_str(), nullptr);
    }
    dconf_changeset_set(changes, key.c_str(), value);
    if (!dconf_client_change_sync(client_.get(), changes, nullptr, nullptr, &error)) {
        throw HostError("cannot replace the settings in " + folder + ": " + error->message);
    }
}

std::vector<std::string> SettingsStore::list(const std::string& folder) {
    int length = 0;
    const TextListPtr names(dconf_client_list(client_.get(), folder.c_str(), &length));
    return {names.get(), names.get() + length};
}

bool SettingsStore::isEmptyFolder(const std::string& folder) {
    return list(folder).empty();
}

void SettingsStore::watch(const std::string& key) {
    dconf_client_watch_sync(client_.get(), key.c_str());
}

void SettingsStore::unwatch(const std::string& key) {
    dconf_client_unwatch_sync(client_.get(), key.c_str());
}

void SettingsStore::onChanged(DConfClient* /*client*/, const char* prefix, const char* const* changes,
                              const char* /*tag*/, gpointer self) {
    auto& store = *static_cast<SettingsStore*>(self);
    guarded("news of changed settings", 0, [&] {
        for (; *changes != nullptr; ++changes) {
            const std::string path = std::string(prefix) + *changes;
            Faults::get().notify(store, path);
            if (store.listener_) {
                store.listener_(path);
            }
        }
        return 0;
    });
}

} // namespace host
