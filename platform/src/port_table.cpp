#include "port_table.h"

#include <algorithm>

#include "bundle_handle.h"

namespace host {

std::optional<int> PortTable::find(const std::string& name) const {
    const auto found =
        std::find_if(ports_.begin(), ports_.end(), [&](const auto& entry) { return entry.second.name == name; });
    return found != ports_.end() ? std::optional(found->first) : std::nullopt;
}

std::optional<std::string> PortTable::nameOf(int id) const {
    const auto found = ports_.find(id);
    return found != ports_.end() ? std::optional(found->second.name) : std::nullopt;
}

int PortTable::set(const std::string& name, message_port_message_cb callback, void* userData) {
    const auto present = find(name);
    const int id = present ? *present : ++lastId_;
    ports_[id] = Port{name, callback, userData};
    return id;
}

bool PortTable::deliver(const std::string& name, const char* sender, GVariant* message) const {
    const auto id = find(name);
    if (!id || *id > lastBegun_) {
        return false;
    }
    const Port target = ports_.at(*id); // a copy, since the callback may close the port
    bundle content{message != nullptr ? StringMap(message) : StringMap()};
    target.callback(*id, sender, nullptr, false, message != nullptr ? &content : nullptr, target.userData);
    return true;
}

} // namespace host
