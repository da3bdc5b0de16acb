#include "TeskConsumerDbMgr.h"
#include "TeskConsumerIpcMgr.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

constexpr char openCall[] = "message_port_register_local_port";
constexpr char closeCall[] = "message_port_unregister_local_port";

class IpcMgrTest : public UnitTest {
protected:
    IpcMgrTest() { journal.clear(); }

    TeskConsumerIpcMgr& manager = *TeskConsumerIpcMgr::getInstance();
};

TEST_F(IpcMgrTest, OpensItsPortAndClosesIt) {
    EXPECT_TRUE(manager.init());
    EXPECT_EQ(journal.calls(), Lines{"message_port_register_local_port eas-itpolicy-port"});
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
    const int id = platform.ports.localPorts.begin()->first;
    journal.clear();

    EXPECT_TRUE(TeskConsumerIpcMgr::deinit());
    EXPECT_EQ(journal.calls(), Lines{"message_port_unregister_local_port " + std::to_string(id)});
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
}

TEST_F(IpcMgrTest, OnlyANegativePortIdIsAnErrorOfTheOpening) {
    platform.faults.always(openCall, 0);
    EXPECT_TRUE(manager.init());
    EXPECT_EQ(journal.warnings(), Lines{});

    platform.faults.always(openCall, MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_FALSE(manager.init());
    EXPECT_EQ(journal.warnings(), Lines{"E Failed message port register. (-5)"});

    platform.faults.always(openCall, -1);
    EXPECT_FALSE(manager.init());
}

TEST_F(IpcMgrTest, AnyCodeButZeroIsAnErrorOfTheClosing) {
    manager.init();
    platform.faults.always(closeCall, 7);
    EXPECT_FALSE(TeskConsumerIpcMgr::deinit());
    platform.faults.always(closeCall, MESSAGE_PORT_ERROR_IO_ERROR);
    EXPECT_FALSE(TeskConsumerIpcMgr::deinit());

    EXPECT_EQ(journal.warnings(),
              (Lines{"E Failed message port unregister. (7)", "E Failed message port unregister. (-5)"}));
}

TEST_F(IpcMgrTest, ClosingWithoutAPortIsAnError) {
    EXPECT_FALSE(TeskConsumerIpcMgr::deinit());

    EXPECT_EQ(journal.calls(), Lines{"message_port_unregister_local_port -1"});
    EXPECT_EQ(journal.warnings(), Lines{"E Failed message port unregister. (-22)"});
}

TEST_F(IpcMgrTest, RequestsOfAnyApplicationAreServedToTheirEnd) {
    manager.init();
    journal.clear();
    const auto port = platform.ports.localPorts.begin()->second;
    bundle* const message = bundle_create();
    bundle_add_str(message, "req", "req_update_policy");
    bundle_add_str(message, "msg", samples::indication(5, samples::builtIn).c_str());

    port.callback(-3, "com.example.stranger", nullptr, false, message, port.userData);

    EXPECT_EQ(storedAccounts(), 1);
    EXPECT_EQ(journal.logsOf("__teskItpolicyReqCb"), (Lines{"I Enter", "I Leave"}));
    bundle_free(message);
}

TEST_F(IpcMgrTest, UnsupportedAndMissingRequestsAreLoggedAndDropped) {
    manager.init();
    for (const auto& request : {std::optional<std::string>("req_unknown"), {""}, {}}) {
        journal.clear();
        platform.ports.deliver(request, std::nullopt);
        EXPECT_EQ(journal.warnings(), Lines{"E Unsupported request : " + request.value_or("")});
        EXPECT_EQ(journal.logsOf("__teskItpolicyReqCb"), (Lines{"I Enter", "I Leave"}));
    }
}

TEST_F(IpcMgrTest, MissingArgumentCountsAsAnEmptyText) {
    manager.init();
    store({account(1)});

    platform.ports.deliver("req_update_policy", std::nullopt);
    EXPECT_EQ(journal.warnings(),
              (Lines{"E json_parser_get_root failed", "W TeskConsumerRespMsgFactory::createResponsedMsg() failed"}));

    journal.clear();
    platform.ports.deliver("req_delete_account", std::nullopt);
    EXPECT_EQ(journal.warnings().front(), "E accountId is invalid");
}

TEST_F(IpcMgrTest, PortWithoutABundleIsAnUnsupportedRequest) {
    manager.init();
    const auto& port = *platform.ports.find("eas-itpolicy-port");

    port.callback(1, "com.velmor.quillon.consumer", nullptr, false, nullptr, port.userData);

    EXPECT_EQ(journal.warnings(), Lines{"E Unsupported request : "});
    EXPECT_EQ(journal.calls({"bundle_get_str"}), Lines{}) << "nothing is asked of it";
}

TEST_F(IpcMgrTest, RequestGoesToTheMailApplicationAndIsReleased) {
    platform.faults.always("message_port_send_message", MESSAGE_PORT_ERROR_IO_ERROR);

    manager.sendEasItpolicyReq("req_disable_password_eas_accounts", "");

    EXPECT_EQ(journal.calls(),
              (Lines{"bundle_create", "bundle_add_str req req_disable_password_eas_accounts", "bundle_add_str msg ",
                     "message_port_send_message com.velmor.quillon.consumer eas-itpolicy-port", "bundle_free"}));
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I [RELAY MSG] req_disable_password_eas_accounts : ", "I Leave"}))
        << "a loss is not logged";
}

TEST_F(IpcMgrTest, MissingBundleLosesTheRequestQuietly) {
    platform.faults.always("bundle_create");

    manager.sendEasItpolicyReq("req", "msg");

    EXPECT_EQ(journal.warnings(), Lines{});
    EXPECT_TRUE(platform.ports.sent.empty());
}

TEST_F(IpcMgrTest, RelayedRequestRunsWithoutAPortAndIsReleasedAfterIt) {
    manager.policyTest("req_unknown", "text");

    EXPECT_EQ(journal.all(),
              (Lines{"bundle_create", "I [RELAY MSG] req_unknown : text", "bundle_add_str req req_unknown",
                     "bundle_add_str msg text", "I Enter", "bundle_get_str req", "bundle_get_str msg", "I Enter",
                     "E Unsupported request : req_unknown", "I Leave", "I Leave", "bundle_free"}));
    EXPECT_EQ(journal.logsOf("policyTest"), Lines{"I [RELAY MSG] req_unknown : text"});
}

using IpcMgrCreationTest = UnitTest;

TEST_F(IpcMgrCreationTest, FailedCreationYieldsNoInstanceAndIsTriedAgain) {
    platform.faults.atCall("operator new", 1);

    EXPECT_EQ(TeskConsumerIpcMgr::getInstance(), nullptr);
    auto* const instance = TeskConsumerIpcMgr::getInstance();
    EXPECT_NE(instance, nullptr);
    EXPECT_EQ(TeskConsumerIpcMgr::getInstance(), instance);
}

} // namespace
