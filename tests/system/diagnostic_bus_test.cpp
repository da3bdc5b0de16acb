#include <gtest/gtest.h>

#include <cctype>

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

/// The methods of the interface with the types of their arguments, such as `allowWifi(i)i`.
std::vector<std::string> methodsOf(const char* xml) {
    GError* error = nullptr;
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(xml, &error);
    EXPECT_NE(node, nullptr) << c::takeMessage(error);
    std::vector<std::string> methods;
    const GDBusInterfaceInfo* interface = g_dbus_node_info_lookup_interface(node, owner);
    for (GDBusMethodInfo** method = interface->methods; *method != nullptr; ++method) {
        std::string text = (*method)->name + std::string("(");
        for (GDBusArgInfo** argument = (*method)->in_args; argument != nullptr && *argument != nullptr; ++argument) {
            text += (*argument)->signature;
        }
        text += ")";
        for (GDBusArgInfo** argument = (*method)->out_args; argument != nullptr && *argument != nullptr; ++argument) {
            text += (*argument)->signature;
        }
        methods.push_back(text);
    }
    g_dbus_node_info_unref(node);
    return methods;
}

TEST(DiagnosticBus, IntrospectionShowsTheMethodsInOrder) {
    const DiagnosticWatch diagnostic;

    const auto answer = diagnostic.device().companions().call(
        owner, diagnosticPath, "org.freedesktop.DBus.Introspectable", "Introspect", nullptr);

    const char* xml = nullptr;
    g_variant_get(answer.get(), "(&s)", &xml);
    EXPECT_EQ(methodsOf(xml), (std::vector<std::string>{
                                  "ping()i",
                                  "removeAccount()i",
                                  "usingFile()i",
                                  "devicePasswordEnabled(i)i",
                                  "allowSimplePassword(i)i",
                                  "minDevicePasswordLength(i)i",
                                  "minDevicePasswordComplexCharacters(i)i",
                                  "maxInactivityTimeDeviceLock(i)i",
                                  "devicePasswordExpiration(i)i",
                                  "devicePasswordHistory(i)i",
                                  "requireDeviceEncryption(i)i",
                                  "allowBluetooth(i)i",
                                  "allowPopimapEmail(i)i",
                                  "allowTextMessaging(i)i",
                                  "allowWifi(i)i",
                              }));
}

TEST(DiagnosticBus, PingAnswersAndChangesNothing) {
    const DiagnosticWatch diagnostic;

    EXPECT_EQ(diagnostic.call("ping"), 0);

    EXPECT_EQ(diagnostic.device().log().count("Pong. I'm alive!"), 1);
    EXPECT_EQ(diagnostic.device().log().count("[RELAY MSG]"), 0);
    EXPECT_EQ(storedRows(diagnostic.device().database()), std::vector<Row>{});
}

TEST(DiagnosticBus, RemoveAccountRemovesTheTestAccountAlone) {
    const DiagnosticWatch diagnostic;
    diagnostic.device().send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    diagnostic.call("minDevicePasswordLength", g_variant_new("(i)", 9));
    ASSERT_EQ(storedAccounts(diagnostic.device().database()), (std::vector<std::string>{"1", "999"}));

    EXPECT_EQ(diagnostic.call("removeAccount"), 0);

    EXPECT_EQ(storedAccounts(diagnostic.device().database()), std::vector<std::string>{"1"});
    EXPECT_EQ(settings().minLength, 4);
}

TEST(DiagnosticBus, RemoveAccountWithoutTheTestAccountChangesNothing) {
    const DiagnosticWatch diagnostic;

    EXPECT_EQ(diagnostic.call("removeAccount"), 0);

    EXPECT_EQ(storedRows(diagnostic.device().database()), std::vector<Row>{});
    EXPECT_EQ(diagnostic.call("ping"), 0);
}

TEST(DiagnosticBus, MissingPolicyFileIsLogged) {
    if (std::filesystem::exists("/opt/usr/media/policy.json")) {
        GTEST_SKIP() << "this machine has a policy file of its own";
    }
    const DiagnosticWatch diagnostic;

    EXPECT_EQ(diagnostic.call("usingFile"), 0);

    EXPECT_EQ(diagnostic.device().log().count("Failed to open file."), 1);
    EXPECT_EQ(diagnostic.device().log().count("[RELAY MSG]"), 0);
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

/// A method that sends a test policy, its argument, and what the device holds then.
struct Setter {
    const char* method;
    int value;
    Settings expected;
};

void PrintTo(const Setter& setter, std::ostream* output) {
    *output << setter.method << " " << setter.value;
}

class DiagnosticSetter : public testing::TestWithParam<Setter> {};

TEST_P(DiagnosticSetter, ReachesTheDevice) {
    const DiagnosticWatch diagnostic;

    EXPECT_EQ(diagnostic.call(GetParam().method, g_variant_new("(i)", GetParam().value)), 0);

    EXPECT_EQ(settings(), GetParam().expected);
    EXPECT_EQ(storedAccounts(diagnostic.device().database()), std::vector<std::string>{"999"});
}

std::string setterName(const testing::TestParamInfo<Setter>& info) {
    return info.param.method + std::to_string(info.param.value);
}

INSTANTIATE_TEST_SUITE_P(
    Each, DiagnosticSetter,
    testing::Values(Setter{"devicePasswordEnabled", 1, {33, 4, 10, 0, 0, 0, 0, 1, 1, 1, 0}},
                    Setter{"devicePasswordEnabled", 0, releasedSettings},
                    Setter{"allowSimplePassword", 0, {32, 4, 10, 0, 0, 0, 0, 1, 1, 1, 0}},
                    Setter{"minDevicePasswordLength", 8, {33, 8, 10, 0, 0, 0, 0, 1, 1, 1, 0}},
                    Setter{"minDevicePasswordComplexCharacters", 3, {129, 4, 10, 3, 0, 0, 0, 1, 1, 1, 0}},
                    Setter{"maxInactivityTimeDeviceLock", 120, {33, 4, 10, 0, 120, 0, 0, 1, 1, 1, 0}},
                    Setter{"devicePasswordExpiration", 30, {33, 4, 10, 0, 0, 30, 0, 1, 1, 1, 0}},
                    Setter{"devicePasswordHistory", 5, {33, 4, 10, 0, 0, 0, 5, 1, 1, 1, 0}},
                    Setter{"requireDeviceEncryption", 1, {33, 4, 10, 0, 0, 0, 0, 1, 1, 1, 1}},
                    Setter{"allowBluetooth", 0, releasedSettings},
                    Setter{"allowPopimapEmail", 0, {0, 0, 10, 0, 0, 0, 0, 1, 1, 0, 0}},
                    Setter{"allowTextMessaging", 0, {0, 0, 10, 0, 0, 0, 0, 1, 0, 1, 0}},
                    Setter{"allowWifi", 0, {0, 0, 10, 0, 0, 0, 0, 0, 1, 1, 0}}),
    setterName);

TEST(DiagnosticBus, BluetoothIsStoredAsAllowedOrNot) {
    constexpr std::size_t column = 13;
    const DiagnosticWatch diagnostic;

    diagnostic.call("allowBluetooth", g_variant_new("(i)", 0));
    EXPECT_EQ(storedRows(diagnostic.device().database()).at(0).at(column), "0");

    diagnostic.call("allowBluetooth", g_variant_new("(i)", 2));
    EXPECT_EQ(storedRows(diagnostic.device().database()).at(0).at(column), "1");
}

} // namespace
} // namespace system_test
