#include "recording/bus_trace.h"

#include <app_common.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/patience.h"
#include "message_size.h"
#include "text_pairs.h"

namespace deskwatch {
namespace {

using MessageOwner = c::ObjectOwner<GDBusMessage>;
using Texts = std::map<std::string, std::string>;
using Events = std::vector<TraceEvent>;

constexpr char serviceConnection[] = ":1.1";
constexpr char mailConnection[] = ":1.2";

TraceEvent replyOf(const char* application) {
    return {{"in", "reply"}, {"from", application}, {"extraData", {{"result", "yes"}}}};
}

/// Bus messages as they would be seen, without the processes that send them.
class Traces : public testing::Test {
protected:
    Traces() {
        g_test_dbus_up(bus_.get());
        const BusClient client(g_test_dbus_get_bus_address(bus_.get()), busPatience);
        trace_ =
            std::make_unique<BusTrace>(client.daemon(), [this](const TraceEvent& event) { events_.push_back(event); });
        changeOwner(ids::service, "", serviceConnection);
        changeOwner(ids::mail, "", mailConnection);
        events_.clear();
    }

    ~Traces() override { g_test_dbus_down(bus_.get()); }

    /// The serial of the call.
    guint32 call(const char* from, const char* to, const char* interface, const char* member, GVariant* body) {
        const MessageOwner message(g_dbus_message_new_method_call(to, "/", interface, member));
        return take(message.get(), from, body);
    }

    void answer(const char* from, const char* to, guint32 serial, GVariant* body) {
        const MessageOwner message(g_dbus_message_new());
        g_dbus_message_set_message_type(message.get(), G_DBUS_MESSAGE_TYPE_METHOD_RETURN);
        g_dbus_message_set_destination(message.get(), to);
        g_dbus_message_set_reply_serial(message.get(), serial);
        take(message.get(), from, body);
    }

    void signal(const char* from, const char* interface, const char* member, GVariant* body) {
        const MessageOwner message(g_dbus_message_new_signal("/", interface, member));
        take(message.get(), from, body);
    }

    void changeOwner(const char* name, const char* before, const char* now) {
        signal("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
               g_variant_new("(sss)", name, before, now));
    }

    guint32 launch(const char* from, const char* to, bool isReplyWanted) {
        return call(from, to, "tesk.host.Application", "Launch", launchBody(isReplyWanted));
    }

    static GVariant* launchBody(bool isReplyWanted) {
        return g_variant_new("(s@a(ayay)b)", "caller", text_pairs::toVariant(Texts{{"key", "value"}}),
                             static_cast<gboolean>(isReplyWanted));
    }

    static GVariant* answerBody() {
        return g_variant_new("(i@a(ayay))", 0, text_pairs::toVariant(Texts{{"result", "yes"}}));
    }

    static GVariant* portMessageBody(const std::string& value) {
        return g_variant_new("(ss@a(ayay))", "port", "sender", text_pairs::toVariant(Texts{{"msg", value}}));
    }

    Events taken() { return std::exchange(events_, {}); }

private:
    guint32 take(GDBusMessage* message, const char* from, GVariant* body) {
        g_dbus_message_set_sender(message, from);
        g_dbus_message_set_serial(message, ++serial_);
        if (body != nullptr) {
            g_dbus_message_set_body(message, body);
        }
        trace_->take(message);
        return serial_;
    }

    c::ObjectOwner<GTestDBus> bus_{g_test_dbus_new(G_TEST_DBUS_NONE)};
    std::unique_ptr<BusTrace> trace_;
    Events events_;
    guint32 serial_ = 0;
};

TEST_F(Traces, AnswerBelongsToTheLaunchThatWantsOne) {
    const auto wanted = launch(serviceConnection, ids::popup, true);
    const auto unwanted = launch(serviceConnection, ids::lockSettings, false);
    const auto launchTo = [](const char* id, bool isReplyWanted) {
        return TraceEvent{
            {"out", "launch"}, {"to", id}, {"replyWanted", isReplyWanted}, {"extraData", {{"key", "value"}}}};
    };
    EXPECT_EQ(taken(), (Events{launchTo(ids::popup, true), launchTo(ids::lockSettings, false)}));
    answer(":1.8", serviceConnection, unwanted, answerBody());
    EXPECT_EQ(taken(), Events());
    answer(":1.9", serviceConnection, wanted, answerBody());
    EXPECT_EQ(taken(), (Events{replyOf(ids::popup)}));
}

TEST_F(Traces, AnswerToALaunchBeforeTheTraceIsOfWhoSendsIt) {
    answer(mailConnection, serviceConnection, 4711, answerBody());
    EXPECT_EQ(taken(), (Events{replyOf(ids::mail)}));
}

TEST_F(Traces, LaunchBelongsToTheServiceThatSendsOrGetsIt) {
    launch(mailConnection, ids::popup, true);
    EXPECT_EQ(taken(), Events());
    launch(mailConnection, ids::service, true);
    EXPECT_EQ(taken(), (Events{TraceEvent{{"in", "launch"}, {"from", "caller"}, {"extraData", {{"key", "value"}}}}}));
    answer(serviceConnection, mailConnection, 1, answerBody());
    EXPECT_EQ(taken(), Events());
}

TEST_F(Traces, MessageOverTheLimitOfThePortIsRefused) {
    const std::size_t most = message_size::limit - message_size::empty - message_size::ofEntry("msg", "");
    const auto kindOf = [this](std::size_t bytes) {
        call(mailConnection, ids::service, "tesk.host.MessagePort", "Send", portMessageBody(std::string(bytes, 'x')));
        const auto events = taken();
        return events.size() == 1 ? events.front().begin().key() : "";
    };
    EXPECT_EQ(kindOf(most), "in");
    EXPECT_EQ(kindOf(most + 1), "refused");
}

TEST_F(Traces, MessageThatNeitherComesFromTheServiceNorGoesToItIsNotTaken) {
    call(mailConnection, ids::popup, "tesk.host.MessagePort", "Send", portMessageBody("text"));
    EXPECT_EQ(taken(), Events());
    call(serviceConnection, ids::mail, "tesk.host.MessagePort", "Send", portMessageBody("text"));
    EXPECT_EQ(
        taken(),
        (Events{TraceEvent{{"out", "message"}, {"to", ids::mail}, {"port", "port"}, {"entries", {{"msg", "text"}}}}}));
}

TEST_F(Traces, SystemEventsHaveTheirNamesOrNumbers) {
    for (const int type : {static_cast<int>(APP_EVENT_LOW_MEMORY), static_cast<int>(APP_EVENT_LOW_BATTERY), 77}) {
        signal(mailConnection, "tesk.host.System", "Event", g_variant_new("(i)", type));
    }
    const auto event = [](const char* type) { return TraceEvent{{"around", "event"}, {"type", type}}; };
    EXPECT_EQ(taken(), (Events{event("low memory"), event("low battery"), event("77")}));
}

TEST_F(Traces, WipeIsOfTheService) {
    signal(mailConnection, "tesk.host.System", "Wiped", g_variant_new("(s)", "internal"));
    EXPECT_EQ(taken(), Events());
    signal(serviceConnection, "tesk.host.System", "Wiped", g_variant_new("(s)", "internal"));
    EXPECT_EQ(taken(), (Events{TraceEvent{{"out", "wipe"}, {"storage", "internal"}}}));
}

TEST_F(Traces, ServiceThatGivesItsNameBackExitsAndAnyOtherIsKilled) {
    changeOwner(ids::service, serviceConnection, "");
    changeOwner(ids::service, "", ":1.5");
    call(":1.5", "org.freedesktop.DBus", "org.freedesktop.DBus", "ReleaseName", g_variant_new("(s)", ids::service));
    changeOwner(ids::service, ":1.5", "");
    changeOwner(ids::service, "", ":1.6");
    call(mailConnection, "org.freedesktop.DBus", "org.freedesktop.DBus", "ReleaseName",
         g_variant_new("(s)", ids::mail));
    changeOwner(ids::service, ":1.6", "");
    const TraceEvent start{{"in", "start"}, {"application", ids::service}};
    const auto end = [](const char* how) {
        return TraceEvent{{"in", "end"}, {"application", ids::service}, {"how", how}};
    };
    EXPECT_EQ(taken(), (Events{end("kill"), start, end("exit"), start, end("kill")}));
}

TEST_F(Traces, NameThatIsNoApplicationIsNotTold) {
    changeOwner("some.other.name", "", ":1.7");
    changeOwner("some.other.name", ":1.7", "");
    changeOwner(ids::mail, mailConnection, "");
    EXPECT_EQ(taken(), Events());
}

/// Anybody may send anything on a bus, and the platform does not look at it before it is seen here.
TEST_F(Traces, MessagesOfAnotherFormAreNotTaken) {
    for (auto* const body : {static_cast<GVariant*>(nullptr), g_variant_new("(x)", G_GINT64_CONSTANT(1))}) {
        const c::VariantOwner owner(body != nullptr ? g_variant_ref_sink(body) : nullptr);
        const auto wanted = launch(serviceConnection, ids::popup, true);
        taken();
        call(mailConnection, ids::service, "tesk.host.Application", "Launch", body);
        call(mailConnection, ids::service, "tesk.host.MessagePort", "Send", body);
        call(mailConnection, ids::service, "ca.desrt.dconf.Writer", "Change", body);
        answer(":1.9", serviceConnection, wanted, body);
        signal(serviceConnection, "tesk.host.System", "Wiped", body);
        signal(mailConnection, "tesk.host.System", "Event", body);
        signal("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged", body);
        EXPECT_EQ(taken(), Events());
    }
}

TEST_F(Traces, MessagesOfAnotherNameAreNotTaken) {
    call(mailConnection, ids::service, "tesk.host.Application", "Start", launchBody(true));
    call(mailConnection, ids::service, "tesk.other", "Launch", launchBody(true));
    call(mailConnection, ids::service, "tesk.host.MessagePort", "Post", portMessageBody("text"));
    call(mailConnection, ids::service, "tesk.other", "Send", portMessageBody("text"));
    signal(serviceConnection, "tesk.other", "Wiped", g_variant_new("(s)", "internal"));
    signal("org.freedesktop.DBus", "org.freedesktop.DBus", "OwnerChanged",
           g_variant_new("(sss)", ids::popup, "", ":1.9"));
    EXPECT_EQ(taken(), Events());
}

} // namespace
} // namespace deskwatch
