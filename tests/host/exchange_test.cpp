#include <message_port.h>
#include <service_app.h>
#include <tesk-host-bus.h>
#include <vconf.h>

#include <array>

#include "host_bus.h"
#include "host_test.h"
#include "platform_owners.h"

namespace {

int send(const char* id, const char* key, const char* value) {
    return message_port_send_message(id, "control", bundleOf({{key, value}}).get());
}

void emitSignal(const char* path, const char* interface, const char* signal, GVariant* arguments) {
    const c::ObjectOwner<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    g_dbus_connection_emit_signal(bus.get(), nullptr, path, interface, signal, arguments, nullptr);
    g_dbus_connection_flush_sync(bus.get(), nullptr, nullptr);
}

void announce(int type) {
    emitSignal(host_bus::systemPath, tesk_host_system_interface_info()->name, "Event", g_variant_new("(i)", type));
}

void announceText() {
    emitSignal(host_bus::systemPath, tesk_host_system_interface_info()->name, "Event",
               g_variant_new("(s)", "low memory"));
}

void tellNews(GVariant* arguments) {
    emitSignal("/ca/desrt/dconf/Writer/user", "ca.desrt.dconf.Writer", "Notify", arguments);
}

void recordNumber(keynode_t* node, void* numbers) {
    static_cast<std::vector<int>*>(numbers)->push_back(vconf_keynode_get_int(node));
}

class Exchange : public HostTest {};

TEST_F(Exchange, MessagesOfASenderThatEndsAtOnceArriveInOrder) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));

    EXPECT_EQ(run({"send", appId, "1", "2", "3", "4"})->status(), 0);

    ASSERT_TRUE(app->said("message from com.example.desk: 4\n"));
    EXPECT_EQ(app->errors(), "create\nlaunch by nobody: \n"
                             "message from com.example.desk: 1\nmessage from com.example.desk: 2\n"
                             "message from com.example.desk: 3\nmessage from com.example.desk: 4\n");
}

TEST_F(Exchange, MessageStartsNoApplication) {
    EXPECT_EQ(send(appId, "text", "hello"), MESSAGE_PORT_ERROR_PORT_NOT_FOUND);
    EXPECT_EQ(occurrences(device().log(), "create\n"), 0U);
}

TEST_F(Exchange, PortClosesWithItsApplication) {
    auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    EXPECT_EQ(send(appId, "text", "hello"), MESSAGE_PORT_ERROR_NONE);
    app.reset();
    EXPECT_TRUE(runMainLoopUntil([] { return send(appId, "text", "hello") == MESSAGE_PORT_ERROR_PORT_NOT_FOUND; }));
}

TEST_F(Exchange, MessageThatIsNotUtf8IsInvalid) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    EXPECT_EQ(send(appId, "text", "\xff"), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(send(appId, "\xff", "text"), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(message_port_send_message(appId, "\xff", nullptr), MESSAGE_PORT_ERROR_INVALID_PARAMETER);
}

TEST_F(Exchange, SystemEventReachesAHandlerThatWasAddedBeforeTheMainLoop) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    announce(APP_EVENT_LOW_BATTERY);
    announce(APP_EVENT_LOW_MEMORY);
    ASSERT_TRUE(app->said("event low memory\n"));
    EXPECT_EQ(occurrences(app->errors(), "event"), 1U);
}

TEST_F(Exchange, SystemEventOfAnotherFormIsPassedOver) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    announceText();
    announce(APP_EVENT_LOW_MEMORY);
    ASSERT_TRUE(app->said("event low memory\n"));
    EXPECT_EQ(occurrences(app->errors(), "CRITICAL"), 0U) << app->errors();
}

TEST_F(Exchange, KeyChangeOfThisProcessReachesTheOther) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    message_port_send_message(appId, "control", bundleOf({{"do", "watch"}, {"key", "db/example/key"}}).get());
    ASSERT_TRUE(app->said("watching"));

    vconf_set_int("db/example/key", 7);

    EXPECT_TRUE(app->said("key db/example/key is 7\n"));
}

TEST_F(Exchange, KeyChangeOfTheOtherProcessReachesThisOne) {
    std::vector<int> numbers;
    vconf_notify_key_changed("db/example/key", recordNumber, &numbers);

    EXPECT_EQ(run({"set-key", "db/example/key", "7"})->status(), 0);

    ASSERT_TRUE(runMainLoopUntil([&] { return !numbers.empty(); }));
    EXPECT_EQ(numbers, std::vector<int>{7});
    int value = 0;
    vconf_get_int("db/example/key", &value);
    EXPECT_EQ(value, 7);
}

TEST_F(Exchange, KeyThatIsSetToItsOwnValueIsNoNews) {
    std::vector<int> numbers;
    vconf_notify_key_changed("db/example/key", recordNumber, &numbers);
    vconf_set_int("db/example/key", 1);
    ASSERT_TRUE(runMainLoopUntil([&] { return !numbers.empty(); })); // its news is not to come behind the next writes

    vconf_set_int("db/example/key", 1);
    vconf_set_int("db/example/key", 2);

    ASSERT_TRUE(runMainLoopUntil([&] { return numbers.back() == 2; }));
    EXPECT_EQ(numbers, (std::vector<int>{1, 2}));
}

TEST_F(Exchange, NewsOfAnotherFormIsPassedOver) {
    std::vector<int> numbers;
    vconf_notify_key_changed("db/example/key", recordNumber, &numbers);
    const std::array<const char*, 2> changes{"", nullptr};

    tellNews(g_variant_new("(s)", "/vconf/db/example/key"));
    tellNews(g_variant_new("(s^ass)", "", changes.data(), ""));
    EXPECT_EQ(run({"set-key", "db/example/key", "7"})->status(), 0);

    ASSERT_TRUE(runMainLoopUntil([&] { return !numbers.empty(); }));
    EXPECT_EQ(numbers, std::vector<int>{7});
}

TEST_F(Exchange, KeyWithAnApostropheIsWatched) {
    std::vector<int> numbers;
    EXPECT_EQ(vconf_notify_key_changed("db/wearer's/key", recordNumber, &numbers), 0);

    vconf_set_int("db/wearer's/key", 7);

    ASSERT_TRUE(runMainLoopUntil([&] { return !numbers.empty(); }));
    EXPECT_EQ(numbers, std::vector<int>{7});
}

TEST_F(Exchange, SettingsSurviveARestartOfEverything) {
    EXPECT_EQ(run({"set-key", "db/example/key", "7"})->status(), 0);
    EXPECT_EQ(run({"administer", "33"})->status(), 0);

    device().shutDown();
    device().boot();

    EXPECT_EQ(run({"print-key", "db/example/key"})->output(), "7");
    EXPECT_EQ(run({"print-quality"})->output(), "33 0");
}

} // namespace
