#include "settings_store.h"

#include <dconf.h>

#include "bus.h"
#include "bus_values.h"
#include "guard.h"
#include "text.h"

namespace host {
namespace {

// What dconf's own client listens to. It would take the news in a thread of its own and hand it to the main loop after
// what came over the bus later.
constexpr char writerName[] = "ca.desrt.dconf";
constexpr char writerInterface[] = "ca.desrt.dconf.Writer";
constexpr char writerPath[] = "/ca/desrt/dconf/Writer/user";
constexpr char newsSignal[] = "Notify";

std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char letter : text) {
        result += letter == '\'' ? "'\\''" : std::string(1, letter);
    }
    return result + "'";
}

// The news of a key, or of all below a folder.
std::string newsOf(const std::string& path) {
    return std::string("type='signal',interface='") + writerInterface + "',member='" + newsSignal + "',path='" +
           writerPath + "',arg0path=" + quoted(path);
}

// Whether the writer answered.
bool callWriter(const Bus& bus, GDBusCallFlags flags) {
    const c::VariantOwner answer(g_dbus_connection_call_sync(bus.connection(), writerName, writerPath, writerInterface,
                                                             "Init", nullptr, nullptr, flags, -1, nullptr, nullptr));
    return answer != nullptr;
}

} // namespace

SettingsStore& SettingsStore::get() {
    static SettingsStore store;
    return store;
}

// dconf takes the process's shared bus connection, in a thread of its own. The connection must have been made before,
// by the main loop's thread, or the news of its loss would come to that other thread.
SettingsStore::SettingsStore()
    : bus_(Bus::get()), client_(dconf_client_new()),
      subscription_(g_dbus_connection_signal_subscribe(bus_.connection(), nullptr, writerInterface, newsSignal,
                                                       writerPath, nullptr, G_DBUS_SIGNAL_FLAGS_NO_MATCH_RULE, onNews,
                                                       this, nullptr)) {}

SettingsStore::~SettingsStore() {
    g_dbus_connection_signal_unsubscribe(bus_.connection(), subscription_);
}

bool SettingsStore::isKey(const std::string& path) {
    return isUtf8(path) && dconf_is_key(path.c_str(), nullptr);
}

c::VariantOwner SettingsStore::read(const std::string& key) {
    return c::VariantOwner(dconf_client_read(client_.get(), key.c_str()));
}

std::optional<int> SettingsStore::readInt(const std::string& key) {
    return intOf(read(key).get());
}

std::optional<std::string> SettingsStore::readText(const std::string& key) {
    return textOf(read(key).get());
}

void SettingsStore::write(const std::string& key, GVariant* value) {
    change({{key, value}});
}

void SettingsStore::change(const Changes& changes) {
    const c::Owner<DConfChangeset, dconf_changeset_unref> set(dconf_changeset_new());
    for (const auto& [key, value] : changes) {
        dconf_changeset_set(set.get(), key.c_str(), value);
    }
    g_autoptr(GError) error = nullptr;
    if (!dconf_client_change_sync(client_.get(), set.get(), nullptr, nullptr, &error)) {
        throw HostError("cannot write the setting " + changes.front().first + ": " + error->message);
    }
}

// One by one: with the reset of a whole folder in the same change, the store drops what is set in it too.
SettingsStore::Changes SettingsStore::removalOf(const std::string& folder) {
    Changes changes;
    for (const std::string& name : list(folder)) {
        if (name.back() != '/') {
            changes.emplace_back(folder + name, nullptr);
        }
    }
    return changes;
}

std::vector<std::string> SettingsStore::list(const std::string& folder) {
    int length = 0;
    const c::TextListOwner names(dconf_client_list(client_.get(), folder.c_str(), &length));
    return {names.get(), names.get() + length};
}

void SettingsStore::watch(const std::string& key) {
    bus_.addMatch(newsOf(key));
}

void SettingsStore::unwatch(const std::string& key) {
    bus_.removeMatch(newsOf(key));
}

// A writer that does not run has nothing to tell.
void SettingsStore::awaitNews() {
    callWriter(bus_, G_DBUS_CALL_FLAGS_NO_AUTO_START);
}

bool SettingsStore::isReachable() {
    return callWriter(bus_, G_DBUS_CALL_FLAGS_NONE);
}

void SettingsStore::onNews(GDBusConnection* /*connection*/, const char* /*sender*/, const char* /*path*/,
                           const char* /*interface*/, const char* /*signal*/, GVariant* arguments, gpointer self) {
    auto& store = *static_cast<SettingsStore*>(self);
    guarded("news of changed settings", [&] {
        for (const std::string& path : changedPathsOf(arguments)) {
            for (const Listener& listener : store.listeners_) {
                listener(path);
            }
        }
    });
}

} // namespace host
