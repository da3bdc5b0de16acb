#include "commands_fixture.h"

namespace deskwatch {
namespace {

class FaultCommands : public Commands {};

TEST_F(FaultCommands, FunctionFailsForTheServiceAloneUntilItIsCleared) {
    boot();
    run({"fault", "dpm_password_set_quality", "-13"});
    EXPECT_EQ(deskwatchProgram({"mail", "policy", sample("hardened.json")}).status, 3);
    EXPECT_EQ(status()["settings"]["quality"], 0);
    EXPECT_EQ(status()["settings"]["minimum_length"], 4) << "the later settings are applied";
    EXPECT_NE(run({"log", "--level", "W"}).find("-13"), std::string::npos) << "the service tells the code";

    run({"fault", "--clear"});
    run({"mail", "policy", sample("hardened.json")});

    EXPECT_EQ(status()["settings"]["quality"], 128);
}

TEST_F(FaultCommands, FaultReachesAServiceThatRuns) {
    boot();
    run({"mail", "policy", sample("exchange-default.json")});
    ASSERT_EQ(status()["settings"]["wifi_state"], 1);
    run({"fault", "dpm_restriction_set_wifi_state", "-13", "--nth", "1"});

    run({"bus", "allowWifi", "0"});
    EXPECT_EQ(status()["settings"]["wifi_state"], 1) << "the first call has failed";
    run({"bus", "allowWifi", "0"});

    EXPECT_EQ(status()["settings"]["wifi_state"], 0) << "the second has not";
}

TEST_F(FaultCommands, FaultsAreListedAndEndWithTheBoot) {
    boot();
    run({"fault", "vconf_set_int", "-1", "--nth", "3"});
    run({"fault", "dpm_manager_create", "-12"});
    EXPECT_EQ(run({"fault"}), "  dpm_manager_create  -12  every call\n  vconf_set_int       -1   call 3\n");
    EXPECT_EQ(Json::parse(run({"fault", "--json"})),
              Json::parse(R"([{"function": "dpm_manager_create", "code": -12, "nth": 0},
                              {"function": "vconf_set_int", "code": -1, "nth": 3}])"));

    run({"off"});
    boot();

    EXPECT_EQ(run({"fault"}), "  none\n");
}

} // namespace
} // namespace deskwatch
