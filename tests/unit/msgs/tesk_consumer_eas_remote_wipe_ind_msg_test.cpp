#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "msgs/TeskConsumerEasRemoteWipeIndMsg.h"
#include "unit_test.h"

namespace {

class RemoteWipeTest : public UnitTest {
protected:
    RemoteWipeTest() {
        platform.devicePolicy.registerService();
        TeskConsumerPolicyMgr::getInstance();
        journal.clear();
    }
};

TEST_F(RemoteWipeTest, OrderWipesTheInternalStorageOnce) {
    TeskConsumerEasRemoteWipeIndMsg message;
    EXPECT_EQ(message.fromJson(R"({"msgId":"eas-remote-wipe","seqId":1,"param":{"more":[1]}})"), 0);
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));

    EXPECT_EQ(message.process(), 0);
    EXPECT_EQ(journal.calls(), Lines{"dpm_security_wipe_data 1"});
    EXPECT_EQ(platform.devicePolicy.wipes, std::vector<int>{1});
}

TEST_F(RemoteWipeTest, ProcessWritesNoLineOfItsOwn) {
    TeskConsumerEasRemoteWipeIndMsg message;
    message.process();

    EXPECT_EQ(journal.logsOf("process"), Lines{});
    EXPECT_EQ(journal.logsOf("factoryReset"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(RemoteWipeTest, TextsThatAreNoOrderAreLoggedAndStillWipeOnce) {
    const std::vector<std::pair<std::string, std::string>> texts{
        {"", "E json_parser_get_root failed"},
        {"7", "E json_node_get_object failed"},
        {"{}", "E msgId is diffrent"},
        {R"({"msgId":"email-init-res"})", "E msgId is diffrent"},
    };
    for (const auto& [text, error] : texts) {
        SCOPED_TRACE(text);
        journal.clear();
        TeskConsumerEasRemoteWipeIndMsg message;
        EXPECT_EQ(message.fromJson(text), -1);
        EXPECT_EQ(journal.logs(), (Lines{"I Enter", error, "I Leave"}));
        EXPECT_EQ(message.process(), 0);
        EXPECT_EQ(journal.calls(), Lines{"dpm_security_wipe_data 1"});
    }
}

TEST_F(RemoteWipeTest, RefusedWipeIsLogged) {
    platform.devicePolicy.clients.clear();
    TeskConsumerEasRemoteWipeIndMsg message;

    EXPECT_EQ(message.process(), 0);
    EXPECT_EQ(journal.warnings(), Lines{"W Failed to wipe internal storage. : [-13]"});
}

TEST_F(RemoteWipeTest, DestructorLogsABareLineUnderItsName) {
    { const TeskConsumerEasRemoteWipeIndMsg message; }

    EXPECT_EQ(journal.logsOf("~TeskConsumerEasRemoteWipeIndMsg"), Lines{"I "});
}

TEST_F(RemoteWipeTest, OrderOverThePortWipesOnce) {
    TeskConsumerIpcMgr::getInstance()->init();

    platform.ports.deliver("req_update_policy", R"({"msgId":"eas-remote-wipe"})");

    EXPECT_EQ(platform.devicePolicy.wipes.size(), 1U);
    EXPECT_EQ(journal.deviceSettings(), Lines{});
}

} // namespace
