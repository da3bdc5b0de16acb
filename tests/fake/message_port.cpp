#include <message_port.h>

#include <algorithm>
#include <stdexcept>

#include "fake_platform.h"

using fake::FakePlatform;

namespace fake {

MessagePorts::LocalPort* MessagePorts::find(const std::string& name, int* id) {
    const auto found =
        std::find_if(localPorts.begin(), localPorts.end(), [&](const auto& port) { return port.second.name == name; });
    if (found == localPorts.end()) {
        return nullptr;
    }
    if (id != nullptr) {
        *id = found->first;
    }
    return &found->second;
}

void MessagePorts::deliver(const std::optional<std::string>& request, const std::optional<std::string>& argument) {
    static const std::string name = "eas-itpolicy-port";
    int id = 0;
    const auto* found = find(name, &id);
    if (found == nullptr) {
        throw std::logic_error("deliver: the service has not registered " + name);
    }
    bundle message;
    if (request) {
        message.entries.emplace_back("req", *request);
    }
    if (argument) {
        message.entries.emplace_back("msg", *argument);
    }
    const LocalPort port = *found;
    port.callback(id, "com.velmor.quillon.consumer", name.c_str(), false, &message, port.userData);
}

void MessagePorts::deliverOwn() {
    while (!pending.empty()) {
        const SentMessage message = pending.front();
        pending.pop_front();
        int id = 0;
        if (const auto* found = find(message.port, &id)) {
            bundle content{{message.entries.begin(), message.entries.end()}};
            const LocalPort port = *found;
            port.callback(id, message.appId.c_str(), nullptr, false, &content, port.userData);
        }
    }
}

} // namespace fake

bundle* bundle_create(void) {
    auto& platform = FakePlatform::current();
    if (platform.call("bundle_create")) {
        return nullptr;
    }
    return *platform.ports.bundles.insert(new bundle).first;
}

int bundle_free(bundle* b) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("bundle_free")) {
        return *fault;
    }
    if (platform.ports.bundles.erase(b) == 0) {
        return BUNDLE_ERROR_INVALID_PARAMETER;
    }
    delete b;
    return BUNDLE_ERROR_NONE;
}

static const std::string* findEntry(const bundle& b, const std::string& key) {
    const auto entry =
        std::find_if(b.entries.begin(), b.entries.end(), [&](const auto& candidate) { return candidate.first == key; });
    return entry == b.entries.end() ? nullptr : &entry->second;
}

int bundle_add_str(bundle* b, const char* key, const char* str) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("bundle_add_str", key, str)) {
        return *fault;
    }
    if (b == nullptr || key == nullptr || str == nullptr) {
        return BUNDLE_ERROR_INVALID_PARAMETER;
    }
    if (findEntry(*b, key) != nullptr) {
        return BUNDLE_ERROR_KEY_EXISTS;
    }
    b->entries.emplace_back(key, str);
    return BUNDLE_ERROR_NONE;
}

int bundle_get_str(bundle* b, const char* key, char** str) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("bundle_get_str", key)) {
        return *fault;
    }
    if (b == nullptr || key == nullptr || str == nullptr) {
        return BUNDLE_ERROR_INVALID_PARAMETER;
    }
    const auto* value = findEntry(*b, key);
    *str = value == nullptr ? nullptr : const_cast<char*>(value->c_str());
    return value == nullptr ? BUNDLE_ERROR_KEY_NOT_AVAILABLE : BUNDLE_ERROR_NONE;
}

int message_port_register_local_port(const char* local_port, message_port_message_cb callback, void* user_data) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("message_port_register_local_port", local_port)) {
        return *fault;
    }
    if (local_port == nullptr || callback == nullptr) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    auto& ports = platform.ports.localPorts;
    int id = ports.empty() ? 1 : ports.rbegin()->first + 1;
    platform.ports.find(local_port, &id);
    ports[id] = {local_port, callback, user_data};
    return id;
}

int message_port_unregister_local_port(int local_port_id) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("message_port_unregister_local_port", local_port_id)) {
        return *fault;
    }
    if (local_port_id <= 0) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    return platform.ports.localPorts.erase(local_port_id) != 0 ? MESSAGE_PORT_ERROR_NONE
                                                               : MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
}

int message_port_check_remote_port(const char* remote_app_id, const char* remote_port, bool* exist) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("message_port_check_remote_port", remote_app_id, remote_port)) {
        return *fault;
    }
    if (remote_app_id == nullptr || remote_port == nullptr || exist == nullptr) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    *exist = platform.appId == remote_app_id ? platform.ports.find(remote_port) != nullptr
                                             : platform.ports.remotePorts.count({remote_app_id, remote_port}) != 0;
    return MESSAGE_PORT_ERROR_NONE;
}

int message_port_send_message(const char* remote_app_id, const char* remote_port, bundle* message) {
    auto& platform = FakePlatform::current();
    if (const auto fault = platform.call("message_port_send_message", remote_app_id, remote_port)) {
        return *fault;
    }
    if (remote_app_id == nullptr || remote_port == nullptr || message == nullptr) {
        return MESSAGE_PORT_ERROR_INVALID_PARAMETER;
    }
    auto& ports = platform.ports;
    ports.sent.push_back({remote_app_id, remote_port, {message->entries.begin(), message->entries.end()}});
    if (platform.appId == remote_app_id && ports.find(remote_port) != nullptr) {
        ports.pending.push_back(ports.sent.back());
        return MESSAGE_PORT_ERROR_NONE;
    }
    return ports.remotePorts.count({remote_app_id, remote_port}) != 0 ? MESSAGE_PORT_ERROR_NONE
                                                                      : MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
}
