#include <message_port.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "fake_platform.h"
#include "message_size.h"

using fake::answer;
using fake::FakePlatform;
using fake::invalidParameter;

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

int MessagePorts::sendToRemote(const SentMessage& message, bool isTooLong) {
    const std::pair remote(message.appId, message.port);
    const bool isOpen = remotePorts.count(remote) != 0;
    const auto known = connections_.find(remote);
    if (known == connections_.end()) {
        if (!isOpen || isTooLong) {
            return isOpen ? MESSAGE_PORT_ERROR_MAX_EXCEEDED : MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
        }
        connections_[remote] = Connection::Sound;
        arrived.emplace_back(message);
        return MESSAGE_PORT_ERROR_NONE;
    }
    Connection& connection = known->second;
    if (connection == Connection::Lost && isOpen) {
        connection = Connection::Sound;
    }
    if (connection == Connection::Garbled) {
        connection = Connection::Ruined;
        arrived.emplace_back();
        return MESSAGE_PORT_ERROR_NONE;
    }
    if (connection != Connection::Sound) {
        connection = connection == Connection::Broken ? Connection::Lost : connection;
        return MESSAGE_PORT_ERROR_IO_ERROR;
    }
    if (isTooLong) {
        connection = Connection::Garbled;
        return MESSAGE_PORT_ERROR_MAX_EXCEEDED;
    }
    arrived.emplace_back(message);
    return MESSAGE_PORT_ERROR_NONE;
}

void MessagePorts::killRemote(const std::string& appId) {
    for (auto& [remote, connection] : connections_) {
        connection = remote.first == appId ? Connection::Broken : connection;
    }
    for (auto port = remotePorts.begin(); port != remotePorts.end();) {
        port = port->first == appId ? remotePorts.erase(port) : std::next(port);
    }
}

void MessagePorts::tellEnds() {
    for (auto known = connections_.begin(); known != connections_.end();) {
        const bool isDead = known->second == Connection::Broken || known->second == Connection::Lost;
        known = isDead ? connections_.erase(known) : std::next(known);
    }
}

void MessagePorts::deliverOwn() {
    while (!pending.empty()) {
        const auto [id, message] = pending.front();
        pending.pop_front();
        const auto found = localPorts.find(id);
        if (found != localPorts.end()) {
            bundle content{{message.entries.begin(), message.entries.end()}};
            const LocalPort port = found->second;
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
    return answer({"bundle_free"}, {b}, [&] {
        if (FakePlatform::current().ports.bundles.erase(b) == 0) {
            return invalidParameter;
        }
        delete b;
        return 0;
    });
}

static const std::string* findEntry(const bundle& b, const std::string& key) {
    const auto entry =
        std::find_if(b.entries.begin(), b.entries.end(), [&](const auto& candidate) { return candidate.first == key; });
    return entry == b.entries.end() ? nullptr : &entry->second;
}

int bundle_add_str(bundle* b, const char* key, const char* str) {
    return answer({"bundle_add_str", key, str}, {b, key, str}, [&]() -> int {
        if (*key == '\0') {
            return invalidParameter;
        }
        if (findEntry(*b, key) != nullptr) {
            return BUNDLE_ERROR_KEY_EXISTS;
        }
        b->entries.emplace_back(key, str);
        return BUNDLE_ERROR_NONE;
    });
}

int bundle_get_str(bundle* b, const char* key, char** str) {
    return answer({"bundle_get_str", key}, {b, key, str}, [&]() -> int {
        const auto* value = findEntry(*b, key);
        if (value == nullptr) {
            return BUNDLE_ERROR_KEY_NOT_AVAILABLE;
        }
        *str = const_cast<char*>(value->c_str());
        return BUNDLE_ERROR_NONE;
    });
}

int message_port_register_local_port(const char* local_port, message_port_message_cb callback, void* user_data) {
    return answer({"message_port_register_local_port", local_port}, {local_port}, [&] {
        if (callback == nullptr) {
            return invalidParameter;
        }
        auto& ports = FakePlatform::current().ports;
        int id = 0;
        if (ports.find(local_port, &id) == nullptr) {
            id = ++ports.lastId;
        }
        ports.localPorts[id] = {local_port, callback, user_data};
        return id;
    });
}

int message_port_unregister_local_port(int local_port_id) {
    return answer({"message_port_unregister_local_port", local_port_id}, {}, [&]() -> int {
        if (local_port_id <= 0) {
            return invalidParameter;
        }
        const bool wasOpen = FakePlatform::current().ports.localPorts.erase(local_port_id) != 0;
        return wasOpen ? MESSAGE_PORT_ERROR_NONE : MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
    });
}

static std::size_t sizeOf(const bundle& message) {
    std::size_t size = message_size::empty;
    for (const auto& [key, value] : message.entries) {
        size += message_size::ofEntry(key, value);
    }
    return size;
}

/// Whether an application has such a port open, which may be the service itself.
static bool isOpen(const char* appId, const char* port) {
    auto& platform = FakePlatform::current();
    return platform.appId == appId ? platform.ports.find(port) != nullptr
                                   : platform.ports.remotePorts.count({appId, port}) != 0;
}

int message_port_check_remote_port(const char* remote_app_id, const char* remote_port, bool* exist) {
    return answer({"message_port_check_remote_port", remote_app_id, remote_port}, {remote_app_id, remote_port, exist},
                  [&] { *exist = isOpen(remote_app_id, remote_port); });
}

int message_port_send_message(const char* remote_app_id, const char* remote_port, bundle* message) {
    return answer(
        {"message_port_send_message", remote_app_id, remote_port}, {remote_app_id, remote_port, message}, [&]() -> int {
            auto& platform = FakePlatform::current();
            auto& ports = platform.ports;
            ports.sent.push_back({remote_app_id, remote_port, {message->entries.begin(), message->entries.end()}});
            const bool isTooLong = sizeOf(*message) > message_size::limit;
            if (platform.appId != remote_app_id) {
                return ports.sendToRemote(ports.sent.back(), isTooLong);
            }
            int id = 0;
            if (ports.find(remote_port, &id) == nullptr) {
                return MESSAGE_PORT_ERROR_PORT_NOT_FOUND;
            }
            if (isTooLong) {
                return MESSAGE_PORT_ERROR_MAX_EXCEEDED;
            }
            ports.pending.emplace_back(id, ports.sent.back());
            return MESSAGE_PORT_ERROR_NONE;
        });
}
