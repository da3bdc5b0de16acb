#include <poll.h>

#include <chrono>

#include "commands_fixture.h"
#include "device/application_ids.h"

namespace deskwatch {
namespace {

/// A mail application that others wrote, in the place of the stand-in.
class ClientSamples : public Commands, public testing::WithParamInterface<const char*> {
protected:
    ClientSamples() { boot({"--mail", GetParam()}); }

    /// Returns when the service and its popup have handled what the application has sent.
    void settleAll() const {
        for (const auto* id : {ids::mail, ids::service, ids::popup}) {
            settle(id);
        }
    }

    /// Whether the application says so within the time-out.
    bool says(const std::string& text) const {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (std::chrono::steady_clock::now() < deadline) {
            if (run({"log"}).find("mail_client: " + text) != std::string::npos) {
                return true;
            }
            poll(nullptr, 0, 20);
        }
        return false;
    }

    static void launch(const std::string& request, const std::string& argument) {
        run({"launch", ids::mail, "req=" + request, "msg=" + argument});
    }
};

TEST_P(ClientSamples, SendsRequestsInOrderAndStartsTheService) {
    launch("req_update_policy", "@" + sample("hardened.json"));
    launch("req_update_policy", "@" + sample("exchange-default.json"));
    launch("req_delete_account", "1");
    ASSERT_TRUE(says("req_delete_account: sent"));
    settleAll();

    const auto accounts = status().at("accounts");
    ASSERT_EQ(accounts.size(), 1U);
    EXPECT_EQ(accounts[0].at("account_id"), 2);
}

TEST_P(ClientSamples, HearsThatTheWearerStopsSynchronising) {
    launch("req_update_policy", "@" + sample("hardened.json"));
    ASSERT_TRUE(says("req_update_policy: sent"));
    settleAll();

    run({"popup", "sync-off"});

    EXPECT_TRUE(says("com.velmor.tesk-agent asks: req_disable_password_eas_accounts"));
}

TEST_P(ClientSamples, GoesOnAfterAMessageThatIsTooLong) {
    launch("req_delete_account", "1"); // a message before it, which a connection needs to be ruined by a long one
    launch("req_update_policy", std::string(12174, 'x'));
    launch("req_update_policy", "@" + sample("hardened.json"));
    EXPECT_TRUE(says("req_update_policy: not sent"));
    ASSERT_TRUE(says("req_update_policy: sent"));
    settleAll();
    EXPECT_EQ(run({"log"}).find("json_parser_get_root failed"), std::string::npos) << "the service has seen it";
    EXPECT_EQ(status().at("accounts").size(), 1U);
}

TEST_P(ClientSamples, SendsTheLongestMessage) {
    launch("req_update_policy", std::string(12173, 'x'));
    ASSERT_TRUE(says("req_update_policy: sent"));
    settleAll();
    EXPECT_NE(run({"log"}).find("json_parser_get_root failed"), std::string::npos) << "the service has not seen it";
}

INSTANTIATE_TEST_SUITE_P(, ClientSamples, testing::Values(MAIL_CLIENT, SAMPLES "/client/mail_client.py"),
                         [](const auto& client) { return client.index == 0 ? "InC" : "InPython"; });

using Launch = Commands;

TEST_F(Launch, UnknownApplicationIsRefused) {
    boot();

    const auto outcome = deskwatchProgram({"launch", "com.example.none"});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "deskwatch: launch: com.example.none is not an application of the watch\n");
    EXPECT_EQ(deskwatchProgram({"launch", ids::mail, "request"}).status, 2) << "an entry without a value";
}

} // namespace
} // namespace deskwatch
