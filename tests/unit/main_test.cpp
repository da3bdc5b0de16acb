#include <array>
#include <csignal>
#include <string>

#include "service_main.h"
#include "unit_test.h"

namespace {

class MainTest : public UnitTest {
protected:
    static int runMain() {
        std::string name = "tesk-agent";
        std::array<char*, 2> arguments{name.data(), nullptr};
        return teskMain(1, arguments.data());
    }
};

TEST_F(MainTest, GreetsThenRegistersThenRunsThenTakesItsLeave) {
    platform.service.duringMainLoop = [this] {
        EXPECT_EQ(journal.warnings(), Lines{"W Hello World!"});
        EXPECT_EQ(journal.calls({"service_app"}),
                  (Lines{"service_app_add_event_handler 0", "service_app_add_event_handler 1",
                         "service_app_add_event_handler 3", "service_app_main 1 tesk-agent"}));
    };

    EXPECT_EQ(runMain(), 0);

    EXPECT_EQ(journal.all().front(), "W Hello World!");
    EXPECT_EQ(journal.all().back(), "W Goodbye World!");
    EXPECT_EQ(journal.logsOf("teskMain"), (Lines{"W Hello World!", "W Goodbye World!"}));
}

TEST_F(MainTest, OutlivesAReaderThatWentAway) {
    std::signal(SIGPIPE, SIG_DFL);
    platform.service.duringMainLoop = [] { std::raise(SIGPIPE); };

    EXPECT_EQ(runMain(), 0);
}

TEST_F(MainTest, EndsWithTheFrameworksResult) {
    platform.faults.always("service_app_main", -77);

    EXPECT_EQ(runMain(), -77);
    EXPECT_EQ(journal.warnings(), (Lines{"W Hello World!", "W Goodbye World!"}));
}

} // namespace
