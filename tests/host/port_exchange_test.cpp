#include <message_port.h>
#include <tesk-host-bus.h>

#include "host_bus.h"
#include "host_test.h"
#include "platform_owners.h"
#include "text_pairs.h"

namespace {

int send(const char* id, const char* key, const char* value) {
    return message_port_send_message(id, "control", bundleOf({{key, value}}).get());
}

// Sends a message over the bus and returns the name of the error that comes back; empty when it was handled.
std::string errorOfSending(const char* id, const char* port, const char* todo) {
    const c::ObjectOwner<TeskHostMessagePort> object(tesk_host_message_port_proxy_new_for_bus_sync(
        G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_NONE, id, host_bus::applicationPath, nullptr, nullptr));
    g_autoptr(GError) error = nullptr;
    GVariant* message = text_pairs::toVariant(std::map<std::string, std::string>{{"do", todo}});
    if (tesk_host_message_port_call_send_sync(object.get(), port, "com.example.sender", message, G_DBUS_CALL_FLAGS_NONE,
                                              -1, nullptr, &error)) {
        return "";
    }
    const c::MemoryOwner<char> name(g_dbus_error_get_remote_error(error));
    return name.get();
}

void ignoreMessage(int /*port*/, const char* /*sender*/, const char* /*remotePort*/, bool /*trusted*/,
                   bundle* /*message*/, void* /*data*/) {}

class PortExchange : public HostTest {};

TEST_F(PortExchange, MessagesOfASenderThatEndsAtOnceArriveInOrder) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));

    EXPECT_EQ(run({"send", appId, "1", "2", "3", "4"})->status(), 0);

    ASSERT_TRUE(app->said("message from com.example.desk: 4\n"));
    EXPECT_EQ(app->errors(), "create\nlaunch by nobody: \n"
                             "message from com.example.desk: 1\nmessage from com.example.desk: 2\n"
                             "message from com.example.desk: 3\nmessage from com.example.desk: 4\n");
}

TEST_F(PortExchange, MessageStartsNoApplication) {
    EXPECT_EQ(send(appId, "text", "hello"), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
    EXPECT_EQ(occurrences(device().log(), "create\n"), 0U);
}

TEST_F(PortExchange, PortThatItsLivingApplicationClosesIsNotFound) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    EXPECT_EQ(send(appId, "do", "close"), MESSAGE_PORT_ERROR_NONE);
    ASSERT_TRUE(app->said("close done\n"));
    EXPECT_EQ(send(appId, "text", "hello"), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
}

TEST_F(PortExchange, OnlyAMessageForNoPortFailsAsPortNotFound) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    EXPECT_EQ(errorOfSending(appId, "control", "nothing"), "");
    EXPECT_EQ(errorOfSending(appId, "another", "nothing"), "tesk.host.Error.PortNotFound");
    EXPECT_EQ(errorOfSending(appId, "control", "throw"), "org.freedesktop.DBus.Error.Failed");
    EXPECT_EQ(occurrences(app->errors(), "the application gave up"), 1U);
}

TEST_F(PortExchange, PortOfAnotherProcessStaysUnavailableHoweverOftenItIsOpened) {
    TestProcess other({TEST_APPLICATION, "serve"}, deskId);
    ASSERT_TRUE(other.said("launch"));
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(message_port_register_local_port("control", ignoreMessage, nullptr),
                  MESSAGE_PORT_ERROR_RESOURCE_UNAVAILABLE);
    }
    EXPECT_GT(message_port_register_local_port("free", ignoreMessage, nullptr), 0);
    EXPECT_EQ(message_port_register_local_port(std::string(256, 'x').c_str(), ignoreMessage, nullptr),
              MESSAGE_PORT_ERROR_INVALID_PARAMETER);
}

} // namespace
