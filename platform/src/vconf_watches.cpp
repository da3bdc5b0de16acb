#include "vconf_watches.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "keynode.h"

namespace host {
namespace {

constexpr char root[] = "/vconf/";

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool isFolder(std::string_view path) {
    return !path.empty() && path.back() == '/';
}

// The change of a folder is the change of every key below it.
bool isAffected(const std::string& path, const std::string& changedPath) {
    return path == changedPath || (isFolder(changedPath) && startsWith(path, changedPath));
}

} // namespace

std::string vconfPath(const char* key) {
    constexpr std::array<std::string_view, 3> stores{"db/", "file/", "memory/"};
    const bool known =
        std::any_of(stores.begin(), stores.end(), [&](std::string_view store) { return startsWith(key, store); });
    const std::string path = std::string(root) + key;
    return known && SettingsStore::isKey(path) ? path : std::string();
}

VconfWatches& VconfWatches::get() {
    static VconfWatches watches(SettingsStore::get());
    return watches;
}

VconfWatches::VconfWatches(SettingsStore& store) : store_(store) {
    store_.addListener([this](const std::string& path) { notify(path); });
}

void VconfWatches::add(const std::string& key, vconf_callback_fn callback, void* userData) {
    const auto present = find(key, callback);
    if (present != watches_.end()) {
        (*present)->userData = userData;
        return;
    }
    store_.watch(root + key);
    watches_.push_back(std::make_shared<Watch>(Watch{key, callback, userData}));
}

bool VconfWatches::remove(const std::string& key, vconf_callback_fn callback) {
    const auto present = find(key, callback);
    if (present == watches_.end()) {
        return false;
    }
    (*present)->ended = true;
    watches_.erase(present);
    store_.unwatch(root + key);
    return true;
}

VconfWatches::Watches::iterator VconfWatches::find(const std::string& key, vconf_callback_fn callback) {
    return std::find_if(watches_.begin(), watches_.end(),
                        [&](const auto& watch) { return watch->key == key && watch->callback == callback; });
}

// Goes over a copy, since a callback may add and end watches; one that has ended is no longer called.
void VconfWatches::notify(const std::string& changedPath) {
    for (const auto& watch : Watches(watches_)) {
        if (!watch->ended && isAffected(root + watch->key, changedPath)) {
            call(*watch);
        }
    }
}

void VconfWatches::call(const Watch& watch) {
    const std::string path = root + watch.key;
    _keynode_t node{watch.key, store_.readInt(path), store_.readText(path)};
    watch.callback(&node, watch.userData);
}

} // namespace host
