#include <memory>

#include "TeskConsumerIpcMgr.h"
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
    static std::unique_ptr<TeskConsumerResponsedMsg> create(const std::string& text) {
        return std::unique_ptr<TeskConsumerResponsedMsg>(TeskConsumerRespMsgFactory::createResponsedMsg(text));
    }

    template <typename Message>
    static void expectKind(const std::string& msgId, int type) {
        const auto message = create(R"({"msgId":")" + msgId + R"("})");
        ASSERT_NE(dynamic_cast<Message*>(message.get()), nullptr) << msgId;
        EXPECT_EQ(message->msgType, type);
    }

    Lines factoryLogs() const { return journal.logsOf("createResponsedMsg"); }
};

TEST_F(RespMsgFactoryTest, EachKindHasItsClassAndTypeCode) {
    expectKind<TeskConsumerInitRespMsg>("email-init-res", 10001);
    expectKind<TeskConsumerAccountInfoRespMsg>("email-account-info", 10002);
    expectKind<TeskConsumerItPolicyIndMsg>("email-itpolicy-ind", 10003);
    expectKind<TeskConsumerEasRemoteWipeIndMsg>("eas-remote-wipe", 10004);
}

TEST_F(RespMsgFactoryTest, EnvelopesOfOneTextShareWhatWasParsed) {
    const TeskConsumerEnvelope first(R"({"msgId":"eas-remote-wipe"})");
    const TeskConsumerEnvelope second(R"({"msgId":"eas-remote-wipe"})");
    EXPECT_NE(first.root(), nullptr);
    EXPECT_EQ(first.root(), second.root());
}

TEST_F(RespMsgFactoryTest, AnEnvelopeNeverShowsAnotherText) {
    const TeskConsumerEnvelope first(R"({"msgId":"eas-remote-wipe"})");
    const TeskConsumerEnvelope second(R"({"msgId":"email-init-res"})");
    EXPECT_EQ(TeskConsumerEnvelope::kindOf(first.root()), "eas-remote-wipe");
    EXPECT_EQ(TeskConsumerEnvelope::kindOf(second.root()), "email-init-res");
}

TEST_F(RespMsgFactoryTest, FactoryLogsItsBeginningAndEnd) {
    create(R"({"msgId":"eas-remote-wipe"})");
    EXPECT_EQ(factoryLogs(), (Lines{"I Enter", "I Leave"}));
}

TEST_F(RespMsgFactoryTest, TextsThatAreNoJsonYieldNothing) {
    for (const auto& text :
         {std::string(), std::string("  "), std::string("hello"), std::string("{\"msgId\":"), std::string("{'msgId"),
          std::string("\xff\xfe{}"), std::string("{\"msgId\":\"email-itpolicy-ind\xff\"}")}) {
        journal.clear();
        EXPECT_EQ(create(text), nullptr) << text;
        EXPECT_EQ(journal.warnings(), Lines{"E json_parser_get_root failed"}) << text;
        EXPECT_EQ(journal.logs(), (Lines{"I Enter", "E json_parser_get_root failed"})) << text;
    }
}

TEST_F(RespMsgFactoryTest, RootsThatAreNoObjectYieldNothing) {
    for (const auto* text : {"[]", R"([{"msgId":"eas-remote-wipe"}])", "1", R"("eas-remote-wipe")", "null", "true"}) {
        journal.clear();
        EXPECT_EQ(create(text), nullptr) << text;
        EXPECT_EQ(journal.logs(), (Lines{"I Enter", "E json_node_get_object failed"})) << text;
    }
}

TEST_F(RespMsgFactoryTest, UnknownKindsYieldNothing) {
    for (const auto* kind : {"EMAIL-INIT-RES", "email-init-res ", "", "unknown"}) {
        journal.clear();
        EXPECT_EQ(create(R"({"msgId":")" + std::string(kind) + R"("})"), nullptr) << kind;
        EXPECT_EQ(journal.logs(), (Lines{"I Enter", std::string("E this is not request msgId: ") + kind, "I Leave"}));
    }
}

TEST_F(RespMsgFactoryTest, KindThatIsMissingOrNoTextIsUnknown) {
    for (const auto* text : {"{}", R"({"msgId":null})", R"({"msgId":10003})", R"({"msgId":["eas-remote-wipe"]})",
                             R"({"msgId":{"a":"b"}})", R"({"msgId":true})", R"({"MsgId":"eas-remote-wipe"})"}) {
        journal.clear();
        EXPECT_EQ(create(text), nullptr) << text;
        EXPECT_EQ(journal.warnings(), Lines{"E this is not request msgId: "}) << text;
    }
}

TEST_F(RespMsgFactoryTest, SequenceNumberChangesNothing) {
    for (const auto* sequence : {"1", "-1", "\"x\"", "null", "{}", "99999999999999999999"}) {
        EXPECT_NE(create(std::string(R"({"msgId":"eas-remote-wipe","seqId":)") + sequence + "}"), nullptr);
    }
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(RespMsgFactoryTest, TextBehindTheRootObjectIsForgiven) {
    EXPECT_NE(create(R"({"msgId":"eas-remote-wipe"} and more)"), nullptr);
}

TEST_F(RespMsgFactoryTest, UnreadablePayloadStillYieldsTheMessage) {
    EXPECT_NE(create(R"({"msgId":"email-itpolicy-ind"})"), nullptr);
    EXPECT_EQ(journal.warnings(), Lines{"E json_object_get_object_member failed"});
}

TEST_F(RespMsgFactoryTest, MissingMemoryYieldsNothing) {
    platform.faults.atCall("operator new", 1);

    EXPECT_EQ(create(R"({"msgId":"eas-remote-wipe"})"), nullptr);
    EXPECT_EQ(journal.warnings(), Lines{});
    EXPECT_EQ(factoryLogs(), (Lines{"I Enter", "I Leave"}));
}

TEST_F(RespMsgFactoryTest, TextIsReadDownTo1024Levels) {
    const auto nested = [](std::size_t levels) {
        return R"({"msgId":"eas-remote-wipe","more":)" + std::string(levels - 1, '[') + std::string(levels - 1, ']') +
               "}";
    };

    EXPECT_NE(create(nested(1024)), nullptr);
    EXPECT_EQ(create(nested(1025)), nullptr);
    EXPECT_EQ(journal.warnings(), Lines{"E json_parser_get_root failed"});
}

TEST_F(RespMsgFactoryTest, UnknownMembersAreIgnored) {
    EXPECT_NE(create(R"({"more":[1],"msgId":"eas-remote-wipe","other":{"msgId":"unknown"}})"), nullptr);
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(RespMsgFactoryTest, MessageReadsItsTextOnce) {
    create(samples::indication(1, samples::builtIn));

    EXPECT_EQ(journal.logsOf("fromJson"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(storedAccounts(), 0);
}

TEST_F(RespMsgFactoryTest, DeepNestingDoesNotEndTheProcess) {
    for (const auto& text :
         {std::string(100000, '['), R"({"msgId":"email-itpolicy-ind","param":)" + std::string(100000, '[')}) {
        journal.clear();
        EXPECT_EQ(create(text), nullptr);
        EXPECT_EQ(journal.warnings(), Lines{"E json_parser_get_root failed"});
    }
}

TEST_F(RespMsgFactoryTest, DeepNestingBehindATextOrACommentDoesNotEndTheProcess) {
    for (const auto* beginning : {"{'\"':", "/* \" */", R"({"a":"\"","b":)", "// \"\n", "{'a\\'':"}) {
        std::string deep(beginning);
        for (int i = 0; i < 50000; ++i) {
            deep += "[";
        }
        EXPECT_EQ(create(deep), nullptr) << beginning;
    }
}

using MessageBaseTest = UnitTest;

TEST_F(MessageBaseTest, BaseHasTheCodeOfNoKind) {
    EXPECT_EQ(TeskConsumerMsg().msgType, 10000);
}

/// Messages that nobody should send, run through the port as the mail application would.
class MalformedMessageTest : public UnitTest, public ::testing::WithParamInterface<const char*> {};

TEST_P(MalformedMessageTest, StoresNothingAndTheNextGoodOneWorks) {
    TeskConsumerIpcMgr::getInstance()->init();

    platform.ports.deliver("req_update_policy", GetParam());

    EXPECT_EQ(storedAccounts(), 0);
    platform.ports.deliver("req_update_policy", samples::indication(3, samples::builtIn));
    EXPECT_EQ(storedAccounts(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, MalformedMessageTest,
    ::testing::Values("", "nonsense", "[]", "{}", "null", "\xc3\x28", R"({"msgId":5})",
                      R"({"msgId":"email-itpolicy-ind"})", R"({"msgId":"email-itpolicy-ind","param":{}})",
                      R"({"msgId":"email-itpolicy-ind","param":"x"})", R"({"msgId":"email-itpolicy-ind","param":null})",
                      R"({"msgId":"email-itpolicy-ind","param":[1,"x",null,[],true]})",
                      R"({"msgId":"email-itpolicy-ind","param":[{}]})",
                      R"({"msgId":"email-itpolicy-ind","param":[{"accountId":1,"policySet":null}]})",
                      R"({"msgId":"email-itpolicy-ind","param":[{"accountId":1,"policySet":[]}]})",
                      R"({"msgId":"email-itpolicy-ind","param":[{"accountName":"a","policySet":{}}]})",
                      R"({"msgId":"email-itpolicy-ind","param":[{"accountId":"1","accountName":"a","policySet":{}}]})",
                      R"({"msgId":"email-itpolicy-ind","param":[{"accountId":-3,"accountName":"a","policySet":{}}]})",
                      R"({"msgId":"email-account-info"})", R"({"msgId":"email-account-info","accountId":{}})",
                      R"({"msgId":"email-account-info","accountId":[1,null,"x"]})",
                      R"({"msgId":"email-init-res","param":[]})", R"({"msgId":"email-init-res","param":{}})",
                      R"({"msgId":"email-init-res","param":{"accountId":[[],7]}})"));

} // namespace
