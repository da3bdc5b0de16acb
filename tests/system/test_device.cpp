#include "test_device.h"

#include <gtest/gtest.h>
#include <message_port.h>

#include <csignal>
#include <cstdlib>
#include <iostream>

#include "device/application_ids.h"
#include "messages.h"
#include "platform_owners.h"
#include "programs.h"

namespace system_test {
namespace {

/// Longer than a busy machine takes for anything, sanitizers included.
constexpr std::chrono::seconds watchTimeout{30};

/// Prepares the environment from which the watch takes what its processes have in common.
const deskwatch::DeviceState& strict(const deskwatch::DeviceState& state) {
    setenv("G_DEBUG", "fatal-criticals", 1);
    setenv("DLOG_LEVEL", "info", 1);
    return state;
}

std::string serviceProgram() {
    const char* wrapper = std::getenv("TESK_TEST_SERVICE");
    return wrapper != nullptr ? wrapper : programs::service;
}

/// Makes this process the mail application of the watch for the platform, which reads the environment on its first use.
void becomeMailApplication(const deskwatch::Device& device) {
    for (const auto& [name, value] : device.appEnvironment(ids::mail)) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

void expectCleanLog(const ServiceLog& log) {
    for (const char* complaint : {"CRITICAL **", "AddressSanitizer", "LeakSanitizer", "runtime error:"}) {
        EXPECT_EQ(log.count(complaint), 0) << log.text();
    }
}

} // namespace

TestDevice::TestDevice(const deskwatch::DeviceState& state, const std::string& parent)
    : folder_(parent),
      booted_(folder_.path(), deskwatch::standardApplications(serviceProgram(), {programs::companion, "companion"}),
              strict(state)),
      log_(layout().log()), changes_(layout()), companions_(layout().busAddress()) {
    becomeMailApplication(booted());
}

TestDevice::~TestDevice() {
    expectCleanLog(log_);
    if (testing::Test::HasFailure()) {
        std::cerr << "---- log of the watch ----\n" << log_.text() << "--------\n";
    }
}

std::filesystem::path TestDevice::database() const {
    return layout().applicationData(ids::service) / "dbspace" / ".tesk.db";
}

void TestDevice::launchService() const {
    const AppControlOwner request = newAppControl();
    ASSERT_EQ(app_control_set_app_id(request.get(), ids::service), APP_CONTROL_ERROR_NONE);
    ASSERT_EQ(app_control_send_launch_request(request.get(), nullptr, nullptr), APP_CONTROL_ERROR_NONE);
    companions_.settle(ids::service);
}

void TestDevice::send(const std::string& request, const std::string& argument) const {
    ASSERT_EQ(sendMessage({{"req", request}, {"msg", argument}}), MESSAGE_PORT_ERROR_NONE);
    companions_.settle(ids::service);
}

void TestDevice::endService() const {
    const auto service = deskwatch::ProcessHandle::open(servicePid());
    ASSERT_TRUE(service) << "the service does not run";
    service->signal(SIGTERM);
    ASSERT_TRUE(service->waitForEnd(watchTimeout));
}

pid_t TestDevice::servicePid() const {
    return companions_.processOf(ids::service);
}

bool TestDevice::isServiceRunning() const {
    return companions_.isRunning(ids::service);
}

void TestDevice::waitUntil(const std::string& what, const Changes::Condition& condition) const {
    EXPECT_TRUE(changes_.waitUntil(condition, watchTimeout)) << "waited in vain for: " << what;
}

void TestDevice::waitForLog(const std::string& text, int count) const {
    waitUntil(text, [&] { return log_.count(text) >= count; });
}

} // namespace system_test
