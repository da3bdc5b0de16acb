#include <gtest/gtest.h>
#include <unistd.h>

#include "c_owners.h"
#include "device/application_ids.h"
#include "service_process.h"
#include "test_device.h"
#include "users_bus.h"

namespace policy_test {
namespace {

namespace ids = deskwatch::ids;

constexpr char name[] = "tesk.consumer.test";
constexpr char path[] = "/tesk/consumer/test";
constexpr char busName[] = "org.freedesktop.DBus";
constexpr char accessDenied[] = "org.freedesktop.DBus.Error.AccessDenied";
constexpr char serviceUnknown[] = "org.freedesktop.DBus.Error.ServiceUnknown";
constexpr guint32 primaryOwner = 1;
constexpr int timeout = 30'000; // milliseconds

/// The answer to a call: its first value as a text, or the name of the error.
std::string answerTo(const Connection& caller, const char* owner, const char* object, const char* method,
                     GVariant* arguments = nullptr) {
    GError* error = nullptr;
    const c::VariantOwner answer(g_dbus_connection_call_sync(caller.get(), owner, object, owner, method, arguments,
                                                             nullptr, G_DBUS_CALL_FLAGS_NONE, timeout, nullptr,
                                                             &error));
    if (answer == nullptr) {
        const c::MemoryOwner<char> remote(g_dbus_error_get_remote_error(error));
        const std::string message = c::takeMessage(error);
        return remote != nullptr ? remote.get() : message;
    }
    const c::VariantOwner first(g_variant_get_child_value(answer.get(), 0));
    const c::MemoryOwner<char> text(g_variant_print(first.get(), FALSE));
    return text.get();
}

std::string requestName(const Connection& connection) {
    return answerTo(connection, busName, "/org/freedesktop/DBus", "RequestName", g_variant_new("(su)", name, 0U));
}

std::string ping(const Connection& caller) {
    return answerTo(caller, name, path, "ping");
}

class BusPolicy : public testing::Test {
protected:
    void SetUp() override {
        if (geteuid() != 0) {
            GTEST_SKIP() << "only root can call as several users";
        }
    }
};

/// The built service as the owner of the name.
class RunningService {
public:
    explicit RunningService(const UsersBus& bus) : service_(device_, environment(bus)) {
        device_.waitForLog("TestDbus.cpp: __onNameAcquired");
    }

    /// How many calls were delivered to it.
    int calls() const {
        device_.companions().settle(ids::service);
        return device_.log().count("Pong. I'm alive!");
    }

private:
    deskwatch::Environment environment(const UsersBus& bus) const {
        auto variables = device_.booted().appEnvironment(ids::service);
        variables["DBUS_SYSTEM_BUS_ADDRESS"] = bus.address();
        return variables;
    }

    const system_test::TestDevice device_;
    const system_test::ServiceProcess service_;
};

TEST_F(BusPolicy, RootsCallIsDelivered) {
    const UsersBus bus(TESK_BUS_POLICY);
    const RunningService service(bus);

    EXPECT_EQ(ping(bus.connect(User::Root)), "0");

    EXPECT_EQ(service.calls(), 1);
}

TEST_F(BusPolicy, AnotherUsersCallIsRefused) {
    const UsersBus bus(TESK_BUS_POLICY);
    const RunningService service(bus);

    EXPECT_EQ(ping(bus.connect(User::Other)), accessDenied);

    EXPECT_EQ(ping(bus.connect(User::Root)), "0");
    EXPECT_EQ(service.calls(), 1) << "root's alone";
}

TEST_F(BusPolicy, WearersApplicationsMayNotCallEither) {
    const UsersBus bus(TESK_BUS_POLICY);
    const RunningService service(bus);

    EXPECT_EQ(ping(bus.connect(User::Owner)), accessDenied);

    EXPECT_EQ(ping(bus.connect(User::Root)), "0");
    EXPECT_EQ(service.calls(), 1) << "root's alone";
}

TEST_F(BusPolicy, ServicesUserMayOwnTheName) {
    const UsersBus bus(TESK_BUS_POLICY);

    EXPECT_EQ(requestName(bus.connect(User::Owner)), std::to_string(primaryOwner));
}

TEST_F(BusPolicy, AnotherUserMayNotOwnTheName) {
    const UsersBus bus(TESK_BUS_POLICY);

    EXPECT_EQ(requestName(bus.connect(User::Other)), accessDenied);
}

TEST_F(BusPolicy, WithoutItNobodyOwnsTheNameSoThatNobodyCalls) {
    const UsersBus bus("");

    EXPECT_EQ(requestName(bus.connect(User::Owner)), accessDenied);
    EXPECT_EQ(requestName(bus.connect(User::Root)), accessDenied);
    EXPECT_EQ(ping(bus.connect(User::Root)), serviceUnknown);
}

} // namespace
} // namespace policy_test
