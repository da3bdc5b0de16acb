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

} // namespace contract
