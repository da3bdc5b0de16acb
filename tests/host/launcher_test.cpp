#include <app_control.h>
#include <message_port.h>
#include <sched.h>
#include <tesk-host-bus.h>
#include <vconf.h>

#include <array>
#include <fstream>
#include <map>
#include <optional>

#include "host_bus.h"
#include "host_test.h"
#include "platform_owners.h"

namespace {

struct Answer {
    std::optional<app_control_result_e> result;
    std::string answer;
    std::string requestedText;
    std::string target;
    std::array<app_control_h, 2> handles{};
};

std::string extraData(app_control_h control, const char* key) {
    char* value = nullptr;
    app_control_get_extra_data(control, key, &value);
    return taken(value);
}

void onReply(app_control_h request, app_control_h reply, app_control_result_e result, void* data) {
    auto* answer = static_cast<Answer*>(data);
    char* target = nullptr;
    app_control_get_app_id(request, &target);
    *answer = {result, extraData(reply, "answer"), extraData(request, "text"), taken(target), {request, reply}};
}

// Sends a launch request and destroys it at once.
int launch(const char* id, const std::map<std::string, std::string>& data, Answer* answer) {
    const AppControlOwner request = newAppControl();
    app_control_set_app_id(request.get(), id);
    for (const auto& [key, value] : data) {
        app_control_add_extra_data(request.get(), key.c_str(), value.c_str());
    }
    return app_control_send_launch_request(request.get(), answer != nullptr ? onReply : nullptr, answer);
}

bool came(const Answer& answer) {
    return runMainLoopUntil([&] { return answer.result.has_value(); });
}

void tellApp(const char* id, const char* todo, const char* key = "") {
    const BundleOwner message = bundleOf({{"do", todo}, {"key", key}});
    EXPECT_EQ(message_port_send_message(id, "control", message.get()), MESSAGE_PORT_ERROR_NONE);
}

// Asks an application, over a connection of its own, to settle. Returns the ids that it still waits for.
std::vector<std::string> settle(const char* id) {
    const c::ObjectOwner<TeskHostApplication> proxy(tesk_host_application_proxy_new_for_bus_sync(
        G_BUS_TYPE_SESSION, G_DBUS_PROXY_FLAGS_NONE, id, host_bus::applicationPath, nullptr, nullptr));
    char** ids = nullptr;
    if (!tesk_host_application_call_settle_sync(proxy.get(), G_DBUS_CALL_FLAGS_NONE, -1, &ids, nullptr, nullptr)) {
        return {};
    }
    const c::TextListOwner owner(ids);
    return {ids, ids + g_strv_length(ids)};
}

class Launcher : public HostTest {};

/// The device's processes get one processor, on which threads that race for the bus lose every time.
class OneProcessor {
public:
    OneProcessor() {
        sched_getaffinity(0, sizeof all_, &all_);
        cpu_set_t first;
        CPU_ZERO(&first);
        CPU_SET(sched_getcpu(), &first);
        sched_setaffinity(0, sizeof first, &first);
    }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;
    ~OneProcessor() { sched_setaffinity(0, sizeof all_, &all_); }

private:
    cpu_set_t all_{};
};

class LauncherOnOneProcessor : private OneProcessor, public HostTest {};

TEST_F(Launcher, StartsTheApplicationAndReachesItAfterCreateOnce) {
    EXPECT_EQ(launch(appId, {{"text", "hello"}}, nullptr), APP_CONTROL_ERROR_NONE);
    ASSERT_TRUE(logged("launch by com.example.desk: hello\n"));
    EXPECT_LT(device().log().find("create\n"), device().log().find("launch by"));
    settle(appId);
    EXPECT_EQ(occurrences(device().log(), "launch by"), 1U);
}

TEST_F(Launcher, ReachesARunningApplicationAgain) {
    launch(appId, {{"text", "first"}}, nullptr);
    launch(appId, {{"text", "second"}}, nullptr);
    ASSERT_TRUE(logged("launch by com.example.desk: second\n"));
    EXPECT_LT(device().log().find("first"), device().log().find("second"));
    EXPECT_EQ(occurrences(device().log(), "create\n"), 1U);
}

TEST_F(Launcher, TextThatCannotBeABusNameIsNoApplication) {
    EXPECT_EQ(launch("no bus name", {}, nullptr), APP_CONTROL_ERROR_APP_NOT_FOUND);
}

TEST_F(Launcher, ReplyComesWithItsDataAndACopyOfTheRequest) {
    Answer answer;
    launch(appId, {{"do", "answer"}, {"text", "caf\xe9"}}, &answer);
    ASSERT_TRUE(came(answer));
    EXPECT_EQ(answer.result, APP_CONTROL_RESULT_SUCCEEDED);
    EXPECT_EQ(answer.answer, "caf\xe9") << "no byte is lost on the way there and back";
    EXPECT_EQ(answer.requestedText, "caf\xe9");
    EXPECT_EQ(answer.target, appId);
    for (app_control_h handle : answer.handles) {
        EXPECT_EQ(app_control_destroy(handle), APP_CONTROL_ERROR_INVALID_PARAMETER) << "gone after the callback";
    }
}

TEST_F(Launcher, RequestIsAnsweredOnceAndCanStillBeReadInTheCallback) {
    Answer answer;
    launch(appId, {{"do", "answer"}, {"text", "hello"}}, &answer);
    EXPECT_TRUE(logged("first answer 0\nsecond answer -22\nlaunch by com.example.desk: hello\n"));
}

TEST_F(Launcher, ReplyMayComeLate) {
    Answer answer;
    launch(appId, {{"do", "keep"}}, &answer);
    ASSERT_TRUE(logged("launch by com.example.desk"));
    EXPECT_FALSE(answer.result.has_value());

    tellApp(appId, "answer");

    ASSERT_TRUE(came(answer));
    EXPECT_EQ(answer.result, APP_CONTROL_RESULT_SUCCEEDED);
    EXPECT_EQ(answer.answer, "yes");
    EXPECT_TRUE(logged("late answer given, caller: an error\n")) << "the request is gone";
}

TEST_F(Launcher, RequestThatIsDroppedIsCancelled) {
    Answer answer;
    launch(appId, {{"do", "drop"}}, &answer);
    ASSERT_TRUE(came(answer));
    EXPECT_EQ(answer.result, APP_CONTROL_RESULT_CANCELED);
    EXPECT_EQ(answer.answer, "(null)");
}

TEST_F(Launcher, DroppedRequestWithoutReplyHarmsNobody) {
    launch(appId, {{"do", "drop"}}, nullptr);
    launch(appId, {{"text", "next"}}, nullptr);
    EXPECT_TRUE(logged("launch by com.example.desk: next\n"));
}

TEST_F(Launcher, DeathOfTheApplicationCancelsTheRequest) {
    Answer answer;
    testing::internal::CaptureStderr();
    launch(appId, {{"do", "crash"}}, &answer);
    ASSERT_TRUE(came(answer));
    EXPECT_EQ(answer.result, APP_CONTROL_RESULT_CANCELED);
    EXPECT_EQ(occurrences(testing::internal::GetCapturedStderr(), "the launch of com.example.app failed: "), 1U);
}

TEST_F(Launcher, ApplicationThatCannotStartFails) {
    Answer answer;
    EXPECT_EQ(launch(brokenId, {}, &answer), APP_CONTROL_ERROR_NONE);
    ASSERT_TRUE(came(answer));
    EXPECT_EQ(answer.result, APP_CONTROL_RESULT_FAILED);
}

TEST_F(Launcher, SenderMayEndAtOnceEvenWhenTheTargetMustBeStarted) {
    EXPECT_EQ(run({"launch", appId, "by"})->status(), 0);
    EXPECT_TRUE(logged("launch by com.example.desk: by\n"));
}

TEST_F(Launcher, RequestAfterTheOneThatEndsTheApplicationIsNotLost) {
    const auto file = device().folder() / "go on";
    launch(appId, {{"do", "exit-when"}, {"file", file.string()}}, nullptr);
    ASSERT_TRUE(logged("exit asked\n"));
    launch(appId, {{"text", "afterwards"}}, nullptr);
    bool open = false;
    message_port_check_remote_port(appId, "control", &open); // answered after the request has been passed on

    std::ofstream(file).close();

    EXPECT_TRUE(logged("launch by com.example.desk: afterwards\n"));
}

TEST_F(Launcher, RequestStartsTheNextProcessWhileTheLastOneEnds) {
    const auto file = device().folder() / "go on";
    launch(appId, {{"do", "exit-late"}, {"file", file.string()}}, nullptr);
    ASSERT_TRUE(logged("terminate\n"));
    launch(appId, {{"text", "meanwhile"}}, nullptr);
    EXPECT_TRUE(logged("launch by com.example.desk: meanwhile\n"));
    std::ofstream(file).close();
}

TEST_F(Launcher, ApplicationComesUpAgainAfterItsEnd) {
    launch(appId, {{"do", "exit"}}, nullptr);
    ASSERT_TRUE(logged("main returned 0\n"));
    EXPECT_EQ(launch(appId, {{"text", "again"}}, nullptr), APP_CONTROL_ERROR_NONE);
    EXPECT_TRUE(logged("launch by com.example.desk: again\n"));
    EXPECT_EQ(occurrences(device().log(), "create\n"), 2U);
}

TEST_F(Launcher, SettledApplicationHasHandledAllThatWasSentBefore) {
    for (int i = 0; i < 20; ++i) {
        launch(appId, {{"text", std::to_string(i)}}, nullptr);
    }
    EXPECT_TRUE(settle(appId).empty());
    EXPECT_EQ(occurrences(device().log(), "launch by"), 20U);
}

TEST_F(LauncherOnOneProcessor, SettledApplicationHasHeardOfEachKeyThatWasSetBefore) {
    constexpr char key[] = "db/example/key";
    vconf_set_int(key, 0);
    launch(appId, {}, nullptr);
    ASSERT_TRUE(logged("launch by com.example.desk"));
    tellApp(appId, "watch", key);
    ASSERT_TRUE(logged("watching"));
    for (int value = 1; value <= 200; ++value) {
        vconf_set_int(key, value);
        settle(appId);
        ASSERT_EQ(occurrences(device().log(), "key db/example/key is " + std::to_string(value) + "\n"), 1U)
            << device().log();
    }
}

TEST_F(Launcher, SettledApplicationNamesThoseThatHaveNotAnswered) {
    launch(appId, {{"do", "launch"}, {"target", keeperId}}, nullptr);
    ASSERT_TRUE(logged("launch by com.example.app"));
    EXPECT_EQ(settle(appId), std::vector<std::string>{keeperId});

    tellApp(keeperId, "answer");
    ASSERT_TRUE(logged("answered"));
    EXPECT_TRUE(settle(appId).empty());
}

} // namespace
