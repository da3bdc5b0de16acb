#include "fake_platform.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <stdexcept>

namespace fake {

namespace {

FakePlatform*& slot() {
    static FakePlatform* platform = nullptr;
    return platform;
}

} // namespace

FakePlatform::FakePlatform() {
    if (exists()) {
        throw std::logic_error("fake platform: there is one already");
    }
    folder_ = (std::filesystem::temp_directory_path() / "tesk-unit-XXXXXX").string();
    if (mkdtemp(folder_.data()) == nullptr) {
        throw std::runtime_error("fake platform: cannot make " + folder_ + ": " + std::strerror(errno));
    }
    dataPath = folder_ + "/data/";
    std::filesystem::create_directory(dataPath);
    for (const char* key : {"db/eas/password_policy_applied", "db/eas/device_encryption_applied",
                            "db/eas/is_pwd_input_finished", "db/setting/lock_type"}) {
        settings.setKeyAsDevice(key, 0);
    }
    slot() = this;
}

FakePlatform::~FakePlatform() {
    slot() = nullptr;
    for (auto* handle : devicePolicy.handles) {
        delete handle;
    }
    endProcess();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

bool FakePlatform::exists() {
    return slot() != nullptr;
}

FakePlatform& FakePlatform::current() {
    if (!exists()) {
        std::cerr << "fake platform: the service calls the platform outside of a test\n";
        std::abort();
    }
    return *slot();
}

void FakePlatform::deliverPending() {
    settings.deliverChanges();
    ports.tellEnds();
    ports.deliverOwn();
}

void FakePlatform::endProcess() {
    for (auto* handler : service.handlers) {
        delete handler;
    }
    service.handlers.clear();
    service.exited = false;
    settings.ignoreAll();
    system.removeAllTimers();
    ports.localPorts.clear();
    ports.pending.clear();
    launches.sent.clear();
}

char* FakePlatform::handOut(const std::string& text) {
    char* copy = strdup(text.c_str());
    handedOut_.insert(copy);
    return copy;
}

std::vector<std::string> FakePlatform::leaks() const {
    std::vector<std::string> leaks;
    leaks.insert(leaks.end(), ports.bundles.size(), "bundle");
    leaks.insert(leaks.end(), launches.handles.size(), "app_control");
    leaks.insert(leaks.end(), static_cast<std::size_t>(system.statements), "sqlite3_stmt");
    for (const auto* text : handedOut_) {
        leaks.push_back(std::string("text ") + static_cast<const char*>(text));
    }
    return leaks;
}

} // namespace fake
