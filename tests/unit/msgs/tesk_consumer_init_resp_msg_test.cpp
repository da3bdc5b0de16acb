#include "msgs/TeskConsumerInitRespMsg.h"
#include "unit_test.h"

namespace {

using InitRespMsgTest = UnitTest;

// What it has in common with the account information lies in that message's tests.

TEST_F(InitRespMsgTest, MissingParamIsAnError) {
    for (const auto* param : {"", R"(,"param":[])", R"(,"param":null)", R"(,"param":"x")"}) {
        journal.clear();
        TeskConsumerInitRespMsg message;
        EXPECT_EQ(message.fromJson(std::string(R"({"msgId":"email-init-res")") + param + "}"), -1);
        EXPECT_EQ(journal.warnings(), Lines{"E json_object_get_object_member failed"}) << param;
    }
}

} // namespace
