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
    {
        TeskConsumerEasRemoteWipeIndMsg message;
        EXPECT_EQ(message.fromJson(R"({"msgId":"eas-remote-wipe","seqId":1,"param":{"more":[1]}})"), 0);
        EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));

        EXPECT_EQ(message.process(), 0);
    }
    EXPECT_EQ(journal.calls(), Lines{"dpm_security_wipe_data 1"});
    EXPECT_EQ(journal.logsOf("process"), Lines{});
    EXPECT_EQ(journal.logsOf("~TeskConsumerEasRemoteWipeIndMsg"), Lines{"I "});
}

TEST_F(RemoteWipeTest, TextsThatAreNoOrderAreLoggedAndStillWipeOnce) {
    const std::vector<std::pair<std::string, std::string>> texts{
        {"", "E json_parser_get_root failed"},
        {"7", "E json_node_get_object failed"},
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

} // namespace
