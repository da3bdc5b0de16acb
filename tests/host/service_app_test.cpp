#include <service_app.h>

#include <cerrno>
#include <csignal>
#include <fstream>

#include "host_test.h"

namespace {

class ServiceApp : public HostTest {};

TEST_F(ServiceApp, ApplicationStartedByHandIsLaunchedOnceAndEndsInOrderOnATerminationSignal) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    app->sendSignal(SIGTERM);
    ASSERT_TRUE(app->ended());
    EXPECT_EQ(app->errors(), "create\nlaunch by nobody: \nterminate\nmain returned 0\n");
    EXPECT_EQ(app->status(), 0);
}

TEST_F(ServiceApp, InterruptEndsTheApplicationInOrder) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    app->sendSignal(SIGINT);
    ASSERT_TRUE(app->ended());
    EXPECT_EQ(app->status(), 0);
}

TEST_F(ServiceApp, BrokenPipeDoesNotEndTheApplication) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    app->sendSignal(SIGPIPE);
    EXPECT_EQ(run({"send", appId, "still here"})->status(), 0);
    EXPECT_TRUE(app->said("still here"));
}

TEST_F(ServiceApp, RefusedCreateEndsTheApplicationWithoutMainLoopAndTerminate) {
    const auto app = start({"refuse"});
    ASSERT_TRUE(app->ended());
    EXPECT_EQ(app->status(), 1);
    EXPECT_EQ(occurrences(app->errors(), "create\n"), 1U);
    EXPECT_EQ(occurrences(app->errors(), "launch"), 0U);
    EXPECT_EQ(occurrences(app->errors(), "terminate"), 0U);
    EXPECT_EQ(occurrences(app->errors(), "the application refused to start\nmain returned -1\n"), 1U);
}

TEST_F(ServiceApp, ApplicationWithoutArgumentsOrCreateIsInvalid) {
    service_app_lifecycle_callback_s callbacks{};
    char* none = nullptr;
    EXPECT_EQ(service_app_main(0, &none, &callbacks, nullptr), -EINVAL);
    callbacks.create = [](void*) { return false; };
    EXPECT_EQ(service_app_main(0, nullptr, &callbacks, nullptr), -EINVAL);
    EXPECT_EQ(service_app_main(0, &none, nullptr, nullptr), -EINVAL);
}

TEST_F(ServiceApp, ExitBeforeTheMainLoopEndsItTooAndRunsTerminate) {
    const auto app = start({"exit-in-create"});
    ASSERT_TRUE(app->ended());
    EXPECT_EQ(app->errors(), "create\nterminate\nmain returned 0\n");
}

TEST_F(ServiceApp, SecondInstanceIsRefusedBeforeCreate) {
    const auto first = start({"serve"});
    ASSERT_TRUE(first->said("launch"));
    const auto second = start({"serve"});
    ASSERT_TRUE(second->ended());
    EXPECT_EQ(second->status(), 1);
    EXPECT_EQ(
        occurrences(second->errors(), "tesk-host: service_app_main: an instance of com.example.app is running already"),
        1U);
    EXPECT_EQ(occurrences(second->errors(), "create"), 0U);
}

TEST_F(ServiceApp, ApplicationWithoutAnIdSaysSoAndDoesNotStart) {
    TestProcess app({TEST_APPLICATION, "serve"}, "");
    ASSERT_TRUE(app.ended());
    EXPECT_EQ(app.status(), 1);
    EXPECT_GE(occurrences(app.errors(), "TESK_APP_ID is not set"), 1U);
    EXPECT_EQ(occurrences(app.errors(), "create"), 0U);
}

TEST_F(ServiceApp, IdThatIsNotABusNameIsRefused) {
    TestProcess app({TEST_APPLICATION, "serve"}, "no bus name");
    ASSERT_TRUE(app.ended());
    EXPECT_EQ(app.status(), 1);
    EXPECT_GE(occurrences(app.errors(), "not a well-formed bus name"), 1U);
}

TEST_F(ServiceApp, ApplicationWithoutABusSaysSoAndDoesNotStart) {
    device().shutDown();
    const auto app = start({"serve"});
    ASSERT_TRUE(app->ended());
    EXPECT_EQ(app->status(), 1);
    EXPECT_GE(occurrences(app->errors(), "cannot connect to the device's bus"), 1U);
}

TEST_F(ServiceApp, LostBusEndsTheApplicationAsAFailure) {
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    device().shutDown();
    ASSERT_TRUE(app->ended());
    EXPECT_EQ(app->status(), 1);
    EXPECT_EQ(occurrences(app->errors(), "the connection to the bus was lost"), 1U);
    EXPECT_EQ(occurrences(app->errors(), "terminate"), 0U);
}

TEST_F(ServiceApp, QuestionToALostBusIsAFailureBeforeTheMainLoopKnows) {
    const auto file = device().folder() / "go on";
    const auto app = start({"ask-again", file.string()});
    ASSERT_TRUE(app->said("asked\n"));
    device().shutDown();
    std::ofstream(file).close();
    ASSERT_TRUE(app->ended());
    EXPECT_EQ(app->status(), 1);
    EXPECT_EQ(occurrences(app->errors(), "the connection to the bus was lost"), 1U);
}

TEST_F(ServiceApp, LostBusIsAFailureForTheOwnerOfASystemNameToo) {
    const auto app = start({"serve-on-both-buses"});
    ASSERT_TRUE(app->said("launch"));
    device().shutDown();
    ASSERT_TRUE(app->ended());
    EXPECT_EQ(app->status(), 1);
    EXPECT_EQ(occurrences(app->errors(), "the connection to the bus was lost"), 1U);
}

} // namespace
