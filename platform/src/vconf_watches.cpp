#include "vconf_watches.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <utility>

#include "c_owners.h"
#include "guard.h"
#include "host_bus.h"
#include "keynode.h"

namespace host {
namespace {

const std::string root = host_bus::sharedKeysPath;
const std::string marks = host_bus::keyMarksPath;

bool startsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

GVariant* newMark() {
    const c::MemoryOwner<char> mark(g_uuid_string_random());
    return g_variant_new_string(mark.get());
}

} // namespace

std::string vconfPath(const char* key) {
    constexpr std::array<std::string_view, 3> stores{"db/", "file/", "memory/"};
    const bool known =
        std::any_of(stores.begin(), stores.end(), [&](std::string_view store) { return startsWith(key, store); });
    const std::string path = root + key;
    return known && SettingsStore::isKey(path) ? path : std::string();
}

void writeVconf(const std::string& key, GVariant* value) {
    SettingsStore::get().change({{root + key, value}, {marks + key, newMark()}});
}

VconfWatches& VconfWatches::get() {
    static VconfWatches watches(SettingsStore::get());
    return watches;
}

VconfWatches::VconfWatches(SettingsStore& store) : store_(store) {
    store_.addListener([this](const std::string& path) { queue(path); });
}

bool VconfWatches::add(const std::string& key, vconf_callback_fn callback, void* userData) {
    if (find(key, callback) != watches_.end() || store_.read(root + key) == nullptr) {
        return false;
    }
    store_.watch(marks + key);
    store_.awaitNews();
    watches_.push_back(Watch{key, callback, userData, ++added_});
    g_idle_add_full(G_PRIORITY_DEFAULT, onBegin, this, nullptr);
    return true;
}

bool VconfWatches::remove(const std::string& key, vconf_callback_fn callback) {
    const auto present = find(key, callback);
    if (present == watches_.end()) {
        return false;
    }
    watches_.erase(present);
    store_.unwatch(marks + key);
    return true;
}

VconfWatches::Watches::iterator VconfWatches::find(const std::string& key, vconf_callback_fn callback) {
    return std::find_if(watches_.begin(), watches_.end(),
                        [&](const Watch& watch) { return watch.key == key && watch.callback == callback; });
}

gboolean VconfWatches::onBegin(gpointer self) {
    ++static_cast<VconfWatches*>(self)->begun_;
    return G_SOURCE_REMOVE;
}

// The first news waits for that of the writes which were made since: the store's writer answers a write before it tells
// of it.
void VconfWatches::queue(const std::string& changedPath) {
    const bool isWatched = std::any_of(watches_.begin(), watches_.end(),
                                       [&](const Watch& watch) { return marks + watch.key == changedPath; });
    if (!isWatched) {
        return;
    }
    const std::string key = changedPath.substr(marks.size());
    if (news_.empty()) {
        store_.awaitNews();
        g_idle_add_full(G_PRIORITY_DEFAULT, onDue, this, nullptr);
    }
    if (!news_.empty() && news_.back().key == key) {
        news_.pop_back();
    }
    news_.push_back({key, begun_});
}

gboolean VconfWatches::onDue(gpointer self) {
    return guarded<gboolean>("news of written keys", G_SOURCE_REMOVE, [&] {
        static_cast<VconfWatches*>(self)->tellNews();
        return G_SOURCE_REMOVE;
    });
}

void VconfWatches::tellNews() {
    for (const News& news : std::exchange(news_, {})) {
        tell(news);
    }
}

// Goes over a copy, since a callback may add and end watches. As on devices, one that a callback before it ended is
// still called.
void VconfWatches::tell(const News& news) {
    Watches due;
    std::copy_if(watches_.begin(), watches_.end(), std::back_inserter(due),
                 [&](const Watch& watch) { return watch.key == news.key && watch.number <= news.begun; });
    for (const Watch& watch : due) {
        _keynode_t node{news.key, store_.readInt(root + news.key), store_.readText(root + news.key)};
        watch.callback(&node, watch.userData);
    }
}

} // namespace host
