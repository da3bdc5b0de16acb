#include <gtest/gtest.h>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

constexpr char owner[] = "tesk.consumer.test";
constexpr char diagnosticPath[] = "/tesk/consumer/test";

/// A watch whose service is found on the bus by developers.
class DiagnosticWatch {
public:
    DiagnosticWatch() {
        device_.launchService();
        device_.waitForLog("__onNameAcquired");
    }

    const TestDevice& device() const { return device_; }

    /// Calls a method and waits until the service has done what it asks for. Returns the method's own answer.
    int call(const char* method, GVariant* arguments = nullptr) const {
        const auto answer = device_.companions().call(owner, diagnosticPath, owner, method, arguments);
        int result = -1;
        g_variant_get(answer.get(), "(i)", &result);
        device_.companions().settle(ids::service);
        return result;
    }

private:
    const TestDevice device_;
};

TEST(DiagnosticBus, RemoveAccountRemovesTheTestAccountAlone) {
    const DiagnosticWatch diagnostic;
    diagnostic.device().send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    diagnostic.call("minDevicePasswordLength", g_variant_new("(i)", 9));
    ASSERT_EQ(storedAccounts(diagnostic.device().database()), (std::vector<std::string>{"1", "999"}));

    EXPECT_EQ(diagnostic.call("removeAccount"), 0);

    EXPECT_EQ(storedAccounts(diagnostic.device().database()), std::vector<std::string>{"1"});
    EXPECT_EQ(settings().minLength, 4);
}

TEST(DiagnosticBus, UnknownMethodIsRefusedAndTheServiceGoesOn) {
    const DiagnosticWatch diagnostic;

    EXPECT_THROW(diagnostic.call("fly"), std::runtime_error);
    EXPECT_THROW(diagnostic.call("allowWifi", g_variant_new("(s)", "no")), std::runtime_error);

    EXPECT_EQ(diagnostic.call("ping"), 0);
}

TEST(DiagnosticBus, CommandLineToolReachesIt) {
    const DiagnosticWatch diagnostic;
    const std::string command = "DBUS_SYSTEM_BUS_ADDRESS='" + diagnostic.device().booted().busAddress() +
                                "' gdbus call --system --dest tesk.consumer.test --object-path /tesk/consumer/test "
                                "--method tesk.consumer.test.minDevicePasswordLength 11";
    char* output = nullptr;
    char* arguments[] = {g_strdup("/bin/sh"), g_strdup("-c"), g_strdup(command.c_str()), nullptr};
    GError* error = nullptr;

    EXPECT_TRUE(
        g_spawn_sync(nullptr, arguments, nullptr, G_SPAWN_DEFAULT, nullptr, nullptr, &output, nullptr, nullptr, &error))
        << c::takeMessage(error);

    EXPECT_STREQ(output, "(0,)\n");
    diagnostic.device().waitUntil("the length of 11", [] { return settings().minLength == 11; });
    g_free(output);
    for (char* argument : arguments) {
        g_free(argument);
    }
}

} // namespace
} // namespace system_test
