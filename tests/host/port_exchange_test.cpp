#include <message_port.h>

#include "host_test.h"
#include "platform_owners.h"

namespace {

int send(const char* id, const char* key, const char* value) {
    return message_port_send_message(id, "control", bundleOf({{key, value}}).get());
}

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

TEST_F(PortExchange, PortClosesWithItsApplication) {
    auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    EXPECT_EQ(send(appId, "text", "hello"), MESSAGE_PORT_ERROR_NONE);
    app.reset();
    EXPECT_TRUE(runMainLoopUntil([] { return send(appId, "text", "hello") == MESSAGE_PORT_ERROR_PORT_NOT_FOUND; }));
}

TEST_F(PortExchange, MessageThatIsNotUtf8IsInvalid) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    EXPECT_EQ(send(appId, "text", "\xff"), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(send(appId, "\xff", "text"), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_send_message(appId, "\xff", nullptr), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
}

} // namespace
