#include <service_app.h>
#include <tesk-host-bus.h>

#include <cerrno>

#include "host_bus.h"
#include "host_test.h"

namespace {

void announce(GVariant* arguments) {
    emitSignal(host_bus::systemPath, tesk_host_system_interface_info()->name, "Event", arguments);
}

class AppEvent : public HostTest {};

TEST_F(AppEvent, SystemEventReachesAHandlerThatWasAddedBeforeTheMainLoop) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    announce(g_variant_new("(i)", APP_EVENT_LOW_BATTERY));
    announce(g_variant_new("(i)", APP_EVENT_LOW_MEMORY));
    ASSERT_TRUE(app->said("event low memory\n"));
    EXPECT_EQ(occurrences(app->errors(), "event"), 1U);
}

TEST_F(AppEvent, HandlerIsRemovedOnce) {
    app_event_handler_h handler = nullptr;
    const auto ignore = [](app_event_info_h, void*) {};
    EXPECT_EQ(service_app_add_event_handler(&handler, APP_EVENT_LOW_MEMORY, ignore, nullptr), 0);
    EXPECT_EQ(service_app_remove_event_handler(handler), 0);
    EXPECT_EQ(service_app_remove_event_handler(handler), -EINVAL);
}

TEST_F(AppEvent, SystemEventOfAnotherFormIsIgnored) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    announce(g_variant_new("(s)", "low memory"));
    announce(g_variant_new("(i)", APP_EVENT_LOW_MEMORY));
    ASSERT_TRUE(app->said("event low memory\n"));
    EXPECT_EQ(occurrences(app->errors(), "CRITICAL"), 0U) << app->errors();
}

} // namespace
