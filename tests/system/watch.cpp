#include "watch.h"

#include "application_ids.h"
#include "platform_owners.h"
#include "programs.h"

#include <gtest/gtest.h>
#include <iostream>
#include <message_port.h>

#include <csignal>
#include <cstdlib>

namespace system_test {
namespace {

/// Longer than a busy machine takes for anything, sanitizers included.
constexpr std::chrono::seconds watchPatience{30};

/// Prepares the environment from which the watch takes what its processes have in common.
const deskwatch::WatchState& strict(const deskwatch::WatchState& state) {
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

Watch::Watch(const deskwatch::WatchState& state, const std::string& parent)
    : folder_(parent),
      device_(folder_.path(), deskwatch::standardApplications(serviceProgram(), {programs::companion, "companion"}),
              strict(state)),
      log_(layout().log()), changes_(layout()), companions_(layout().busAddress()) {
    becomeMailApplication(device());
}

Watch::~Watch() {
    expectCleanLog(log_);
    if (testing::Test::HasFailure()) {
        std::cerr << "---- log of the watch ----\n" << log_.text() << "--------\n";
    }
}

std::filesystem::path Watch::database() const {
    return layout().applicationData(ids::service) / "dbspace" / ".tesk.db";
}

void Watch::launchService() const {
    const AppControl request = newAppControl();
    ASSERT_EQ(app_control_set_app_id(request.get(), ids::service), APP_CONTROL_ERROR_NONE);
    ASSERT_EQ(app_control_send_launch_request(request.get(), nullptr, nullptr), APP_CONTROL_ERROR_NONE);
    companions_.settle(ids::service);
}

void Watch::send(const std::string& request, const std::string& argument) const {
    ASSERT_EQ(sendMessage({{"req", request}, {"msg", argument}}), MESSAGE_PORT_ERROR_NONE);
    companions_.settle(ids::service);
}

void Watch::endService() const {
    const auto service = deskwatch::ProcessHandle::open(servicePid());
    ASSERT_TRUE(service) << "the service does not run";
    service->signal(SIGTERM);
    ASSERT_TRUE(service->waitForEnd(watchPatience));
}

pid_t Watch::servicePid() const {
    return companions_.processOf(ids::service);
}

bool Watch::isServiceRunning() const {
    return companions_.isRunning(ids::service);
}

void Watch::waitUntil(const std::string& what, const Changes::Condition& condition) const {
    EXPECT_TRUE(changes_.waitUntil(condition, watchPatience)) << "waited in vain for: " << what;
}

void Watch::waitForLog(const std::string& text, int count) const {
    waitUntil(text, [&] { return log_.count(text) >= count; });
}

} // namespace system_test
