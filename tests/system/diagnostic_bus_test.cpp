#include <gtest/gtest.h>

#include "device_state.h"
#include "test_device.h"

namespace system_test {
namespace {

TEST(DiagnosticBus, CommandLineToolReachesIt) {
    const TestDevice device;
    device.launchService();
    device.waitForLog("__onNameAcquired");
    const std::string command = "gdbus call --address '" + device.booted().busAddress() +
                                "' --dest tesk.consumer.test --object-path /tesk/consumer/test "
                                "--method tesk.consumer.test.minDevicePasswordLength 11";
    char* output = nullptr;
    GError* error = nullptr;

    EXPECT_TRUE(g_spawn_command_line_sync(command.c_str(), &output, nullptr, nullptr, &error)) << c::takeMessage(error);

    const c::MemoryOwner<char> answer(output);
    EXPECT_STREQ(answer.get(), "(0,)\n");
    device.waitUntil("the length of 11", [] { return settings().minLength == 11; });
}

} // namespace
} // namespace system_test
