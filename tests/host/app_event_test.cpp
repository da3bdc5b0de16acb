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

void count(app_event_info_h /*info*/, void* events) {
    ++*static_cast<int*>(events);
}

TEST_F(AppEvent, HandlerIsRemovedOnceAndHearsNothingMore) {
    app_event_handler_h first = nullptr;
    app_event_handler_h second = nullptr;
    int eventsOfFirst = 0;
    int eventsOfSecond = 0;
    EXPECT_EQ(service_app_add_event_handler(&first, APP_EVENT_LOW_MEMORY, count, &eventsOfFirst), 0);
    EXPECT_EQ(service_app_add_event_handler(&second, APP_EVENT_LOW_MEMORY, count, &eventsOfSecond), 0);

    EXPECT_EQ(service_app_remove_event_handler(first), 0);
    EXPECT_EQ(service_app_remove_event_handler(first), -EINVAL);

    announce(g_variant_new("(i)", APP_EVENT_LOW_MEMORY));
    EXPECT_TRUE(runMainLoopUntil([&] { return eventsOfSecond == 1; }));
    EXPECT_EQ(eventsOfFirst, 0);
}

TEST_F(AppEvent, HandlerOfNoEventOrWithoutACallbackIsInvalid) {
    app_event_handler_h handler = nullptr;
    const auto unknown = static_cast<app_event_type_e>(APP_EVENT_SUSPENDED_STATE_CHANGED + 1);
    EXPECT_EQ(service_app_add_event_handler(&handler, APP_EVENT_SUSPENDED_STATE_CHANGED, count, nullptr), 0);
    EXPECT_EQ(service_app_add_event_handler(&handler, unknown, count, nullptr), -EINVAL);
    EXPECT_EQ(service_app_add_event_handler(&handler, APP_EVENT_LOW_MEMORY, nullptr, nullptr), -EINVAL);
    EXPECT_EQ(service_app_add_event_handler(nullptr, APP_EVENT_LOW_MEMORY, count, nullptr), -EINVAL);
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
