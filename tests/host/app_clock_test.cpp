#include <message_port.h>
#include <tesk-host-bus.h>

#include <cstdlib>

#include "host_bus.h"
#include "host_test.h"
#include "platform_owners.h"
#include "watch_clock.h"

namespace {

/// An application that waits by the clock of the watch.
class AppClock : public HostTest {
protected:
    AppClock() {
        setenv(watch_clock::variable, watch_clock::standing, 1);
        application_ = start({"serve"});
        unsetenv(watch_clock::variable); // the test itself waits by the clock of the machine
    }

    TestProcess& application() { return *application_; }

    void tell(const char* todo) {
        const BundleOwner message = bundleOf({{"do", todo}});
        EXPECT_EQ(message_port_send_message(appId, "control", message.get()), MESSAGE_PORT_ERROR_NONE);
        EXPECT_TRUE(application_->said(std::string(todo) + " done\n"));
    }

    /// Lets time pass; returns how often the application's timer has gone off since its start.
    std::size_t firedAfter(guint seconds) {
        const c::ObjectOwner<TeskHostApplication> proxy(tesk_host_application_proxy_new_for_bus_sync(
            G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_NONE, appId, host_bus::applicationPath, nullptr, nullptr));
        EXPECT_TRUE(tesk_host_application_call_advance_sync(proxy.get(), seconds, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                                                            nullptr));
        return occurrences(application_->errors(), "timer\n");
    }

private:
    std::unique_ptr<TestProcess> application_;
};

TEST_F(AppClock, TimerGoesOffEachTimeItsSecondsHavePassedUntilItIsRemoved) {
    ASSERT_TRUE(application().said("launch"));
    tell("start ten seconds");

    EXPECT_EQ(firedAfter(9), 0U);
    EXPECT_EQ(firedAfter(1), 1U);
    EXPECT_EQ(firedAfter(9), 1U);
    EXPECT_EQ(firedAfter(1), 2U);

    tell("stop");
    EXPECT_EQ(firedAfter(10), 2U);
}

} // namespace
