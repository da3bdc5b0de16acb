#include <glib.h>

#include <memory>

#include "contract_environment.h"
#include "main_loop.h"
#include "private_device.h"

namespace contract {
namespace {

std::unique_ptr<PrivateDevice>& device() {
    static std::unique_ptr<PrivateDevice> instance;
    return instance;
}

} // namespace

void setUp() {
    device() = std::make_unique<PrivateDevice>(applicationId);
    device()->boot();
}

void tearDown() {
    device().reset();
}

bool runUntil(const std::function<bool()>& condition) {
    return runMainLoopUntil(condition);
}

void runPending() {
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

} // namespace contract
