#include "host_test.h"

#include <dconf.h>

namespace {

std::vector<std::string> commandOf(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{TEST_APPLICATION};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return command;
}

} // namespace

HostTest::HostTest() {
    device_.install(appId, std::string(TEST_APPLICATION) + " serve");
    device_.install(keeperId, std::string(TEST_APPLICATION) + " serve");
    device_.install(brokenId, "/bin/false");
    device_.boot();
}

std::unique_ptr<TestProcess> HostTest::start(const std::vector<std::string>& arguments) {
    return std::make_unique<TestProcess>(commandOf(arguments), appId);
}

std::unique_ptr<TestProcess> HostTest::run(const std::vector<std::string>& arguments) {
    auto process = std::make_unique<TestProcess>(commandOf(arguments), deskId);
    EXPECT_TRUE(process->ended()) << arguments.at(0);
    return process;
}

bool HostTest::logged(const std::string& text) const {
    return runMainLoopUntil([&] { return device_.log().find(text) != std::string::npos; });
}

std::size_t occurrences(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

void emitSignal(const char* path, const char* interface, const char* signal, GVariant* arguments) {
    const c::ObjectOwner<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    g_dbus_connection_emit_signal(bus.get(), nullptr, path, interface, signal, arguments, nullptr);
    g_dbus_connection_flush_sync(bus.get(), nullptr, nullptr);
}

void writeSetting(const std::string& path, GVariant* value) {
    const c::ObjectOwner<DConfClient> client(dconf_client_new());
    ASSERT_TRUE(dconf_client_write_sync(client.get(), path.c_str(), value, nullptr, nullptr, nullptr));
}
