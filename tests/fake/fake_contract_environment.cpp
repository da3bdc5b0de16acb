#include <memory>

#include "contract_environment.h"
#include "fake_platform.h"

namespace contract {

namespace {

std::unique_ptr<fake::FakePlatform>& platform() {
    static std::unique_ptr<fake::FakePlatform> instance;
    return instance;
}

} // namespace

void setUp() {
    platform() = std::make_unique<fake::FakePlatform>();
    platform()->appId = applicationId;
}

void tearDown() {
    platform().reset();
}

bool runUntil(const std::function<bool()>& condition) {
    platform()->deliverPending();
    return condition();
}

void runPending() {
    platform()->deliverPending();
}

bool removePolicyDaemon() {
    platform()->devicePolicy.hasDaemon = false;
    return true;
}

bool mayWipe() {
    return true;
}

namespace remote {

bool start() {
    return platform()->ports.remotePorts.emplace(id, port).second;
}

bool setKey(const std::string& key, int value) {
    platform()->settings.setKeyAsDevice(key, value);
    return true;
}

void kill() {
    platform()->ports.killRemote(id);
}

std::vector<std::string> texts() {
    std::vector<std::string> texts;
    for (const auto& message : platform()->ports.arrived) {
        texts.push_back(message ? message->entries.at(0).second : "no message");
    }
    return texts;
}

} // namespace remote
} // namespace contract
