#include <memory>

#include "msgs/TeskConsumerAccountInfoRespMsg.h"
#include "msgs/TeskConsumerEasRemoteWipeIndMsg.h"
#include "msgs/TeskConsumerEnvelope.h"
#include "msgs/TeskConsumerInitRespMsg.h"
#include "msgs/TeskConsumerItPolicyIndMsg.h"
#include "msgs/TeskConsumerRespMsgFactory.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

class RespMsgFactoryTest : public UnitTest {
protected:
    std::unique_ptr<TeskConsumerResponsedMsg> create(const std::string& text) {
        journal.clear();
        return std::unique_ptr<TeskConsumerResponsedMsg>(TeskConsumerRespMsgFactory::createResponsedMsg(text));
    }

    template <typename Message>
    void expectKind(const std::string& msgId, int type) {
        const auto message = create(R"({"msgId":")" + msgId + R"("})");
        ASSERT_NE(dynamic_cast<Message*>(message.get()), nullptr) << msgId;
        EXPECT_EQ(message->msgType, type);
    }

    /// Expects that a text yields no message, and the log lines that say why.
    void expectNothing(const std::string& text, const Lines& logs) {
        EXPECT_EQ(create(text), nullptr) << text.substr(0, 100);
        EXPECT_EQ(journal.logs(), logs) << text.substr(0, 100);
    }
};

const fake::Journal::Lines noJson{"I Enter", "E json_parser_get_root failed"};

TEST_F(RespMsgFactoryTest, EachKindHasItsClassAndTypeCode) {
    EXPECT_EQ(TeskConsumerMsg().msgType, 10000) << "of no kind";
    expectKind<TeskConsumerInitRespMsg>("email-init-res", 10001);
    expectKind<TeskConsumerAccountInfoRespMsg>("email-account-info", 10002);
    expectKind<TeskConsumerItPolicyIndMsg>("email-itpolicy-ind", 10003);
    EXPECT_EQ(journal.warnings(), Lines{"E json_object_get_object_member failed"}) << "of the payload alone";
    expectKind<TeskConsumerEasRemoteWipeIndMsg>("eas-remote-wipe", 10004);
    EXPECT_EQ(journal.logsOf("createResponsedMsg"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(RespMsgFactoryTest, EnvelopesOfOneTextShareWhatWasParsed) {
    const TeskConsumerEnvelope first(R"({"msgId":"eas-remote-wipe"})");
    const TeskConsumerEnvelope second(R"({"msgId":"eas-remote-wipe"})");
    EXPECT_NE(first.root(), nullptr);
    EXPECT_EQ(first.root(), second.root());

    const TeskConsumerEnvelope other(R"({"msgId":"email-init-res"})");
    EXPECT_EQ(TeskConsumerEnvelope::kindOf(first.root()), "eas-remote-wipe");
    EXPECT_EQ(TeskConsumerEnvelope::kindOf(other.root()), "email-init-res");
}

TEST_F(RespMsgFactoryTest, TextsThatAreNoJsonYieldNothing) {
    for (const auto* text :
         {"", "  ", "hello", "{\"msgId\":", "{'msgId", "\xff\xfe{}", "{\"msgId\":\"email-itpolicy-ind\xff\"}"}) {
        expectNothing(text, noJson);
    }
}

TEST_F(RespMsgFactoryTest, RootsThatAreNoObjectYieldNothing) {
    for (const auto* text : {"[]", R"([{"msgId":"eas-remote-wipe"}])", "1", R"("eas-remote-wipe")", "null", "true"}) {
        expectNothing(text, {"I Enter", "E json_node_get_object failed"});
    }
}

TEST_F(RespMsgFactoryTest, UnknownKindsYieldNothing) {
    for (const auto* kind : {"EMAIL-INIT-RES", "email-init-res ", "", "unknown"}) {
        expectNothing(R"({"msgId":")" + std::string(kind) + R"("})",
                      {"I Enter", std::string("E this is not request msgId: ") + kind, "I Leave"});
    }
    for (const auto* text : {"{}", R"({"msgId":null})", R"({"msgId":10003})", R"({"msgId":["eas-remote-wipe"]})",
                             R"({"msgId":{"a":"b"}})", R"({"msgId":true})", R"({"MsgId":"eas-remote-wipe"})"}) {
        expectNothing(text, {"I Enter", "E this is not request msgId: ", "I Leave"});
    }
}

TEST_F(RespMsgFactoryTest, WhatStandsBesideTheKindChangesNothing) {
    for (const auto* text : {R"({"msgId":"eas-remote-wipe","seqId":"x"})", R"({"seqId":{},"msgId":"eas-remote-wipe"})",
                             R"({"more":[1],"msgId":"eas-remote-wipe","other":{"msgId":"unknown"}})",
                             R"({"msgId":"eas-remote-wipe"} and more)"}) {
        EXPECT_NE(create(text), nullptr) << text;
        EXPECT_EQ(journal.warnings(), Lines{});
    }
}

TEST_F(RespMsgFactoryTest, MissingMemoryYieldsNothing) {
    platform.faults.atCall("operator new", 1);

    expectNothing(R"({"msgId":"eas-remote-wipe"})", {"I Enter", "I Leave"});
}

TEST_F(RespMsgFactoryTest, DeepNestingDoesNotEndTheProcess) {
    for (const auto* beginning : {"", R"({"msgId":"email-itpolicy-ind","param":)", "{'\"':", "/* \" */",
                                  R"({"a":"\"","b":)", "// \"\n", "{'a\\'':"}) {
        expectNothing(beginning + std::string(100000, '['), noJson);
    }
}

TEST_F(RespMsgFactoryTest, MessageReadsItsTextOnceAndStoresNothing) {
    create(samples::indication(1, samples::builtIn));

    EXPECT_EQ(journal.logsOf("fromJson"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(storedAccounts(), 0);
}

} // namespace
