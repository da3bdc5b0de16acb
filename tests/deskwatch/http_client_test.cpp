#include "exchange/http_client.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "exchange/exchange_trace.h"
#include "exchange/handshake.h"
#include "provisioning/provisioning_document.h"
#include "server_thread.h"
#include "temporary_folder.h"

namespace {

/// Set once a TLS library is loaded: GCC 12's leak check crashes while it looks at what that library keeps for each
/// thread.
bool isTlsLoaded = false;

} // namespace

extern "C" int __lsan_is_turned_off(); // NOLINT(bugprone-reserved-identifier): the leak check asks it

extern "C" int __lsan_is_turned_off() { // NOLINT(bugprone-reserved-identifier)
    return isTlsLoaded ? 1 : 0;
}

namespace deskwatch {
namespace {

const std::string certificates = SOURCE_FOLDER "/tests/deskwatch/certificates/";

/// A server over the network with a policy for everybody, and bob's account there.
class HttpExchange : public testing::Test {
protected:
    DeskServer& server() { return server_; }

    static ServerAccount account(const std::string& url, QueryForm form = QueryForm::Plain) {
        ServerAccount account;
        account.url = serverAddress(url, false);
        account.user = "bob";
        account.deviceId = "desk0001";
        account.form = form;
        return account;
    }

    /// The refusal of a connection, or "".
    static std::string refusal(const std::string& url, const std::string& authorities = "", HttpLimits limits = {}) {
        try {
            HttpClient client(authorities, limits);
            auto bob = account(url);
            Handshake(client, bob, "secret").connect(std::nullopt);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
    DeskServer server_{ServedPolicies({"bob=" SAMPLES "/provision-hardened.xml"}), "12.1,14.1", "secret"};
};

TEST_F(HttpExchange, WholeHandshakeInBothFormsOfTheQuery) {
    const ServerThread http(server());
    for (const auto form : {QueryForm::Plain, QueryForm::Base64}) {
        HttpClient client("");
        auto bob = account(http.url(), form);
        Handshake handshake(client, bob, "secret");
        const auto demand = handshake.connect(std::nullopt);
        EXPECT_EQ(demand.kind, ServerDemand::Kind::Policy);
        EXPECT_TRUE(handshake.acknowledge(demand.temporaryKey, Compliance::Applied).isAccepted);
        EXPECT_EQ(handshake.refresh().kind, ServerDemand::Kind::Nothing);
    }
}

TEST_F(HttpExchange, CertificateMustBeTrustedInTimeAndForTheName) {
    isTlsLoaded = true;
    const std::tuple<const char*, std::string, const char*> rows[] = {
        {"good.pem", certificates + "authority.pem", ""},
        {"good.pem", "", "nobody that is trusted signed it; --cacert FILE names a private authority"},
        {"expired.pem", certificates + "authority.pem", "it has expired"},
        {"early.pem", certificates + "early.pem", "it is not valid yet"},
        {"other-name.pem", certificates + "authority.pem", "it is for another name"},
    };
    for (const auto& [certificate, authorities, words] : rows) {
        const ServerThread http(server(), certificates + certificate);
        const auto told = refusal(http.url(), authorities);
        const auto expected =
            "cannot get an answer from " + serverAddress(http.url(), false) + ": its certificate is refused: " + words;
        EXPECT_EQ(told, *words == '\0' ? "" : expected) << certificate;
    }
    EXPECT_NE(refusal("https://127.0.0.1:1", "/no/such/file").find("/no/such/file"), std::string::npos);
}

TEST_F(HttpExchange, AnswerThatIsCutLateOrTooLargeIsGivenUp) {
    isTlsLoaded = true;
    const ServerThread http(server());
    server().order({"bob", "cut", ""});
    EXPECT_NE(refusal(http.url()).find("cannot get an answer from http://127.0.0.1"), std::string::npos);
    server().order({"bob", "slow", "900"});
    EXPECT_NE(refusal(http.url(), "", {1, 1000}).find("not complete after 1 seconds"), std::string::npos);
    const auto& plain = http.url();
    const auto withoutTls = refusal("https" + plain.substr(plain.find(':')), "", {1, 1000});
    EXPECT_NE(withoutTls.find("; does the server speak TLS at this port?"), std::string::npos) << withoutTls;
    HttpClient client("");
    auto bob = account(http.url());
    EXPECT_EQ(Handshake(client, bob, "secret").connect(std::nullopt).kind, ServerDemand::Kind::Policy);
    constexpr std::size_t size = 185; // of the policy that the server sends
    EXPECT_EQ(refusal(http.url(), "", {60, size}), "");
    EXPECT_NE(refusal(http.url(), "", {60, size - 1}).find(": the answer has more than 184 bytes"), std::string::npos);
}

TEST_F(HttpExchange, TraceIsReadableAndHoldsNoPassword) {
    const auto file = (folder().path() / "trace").string();
    const ServerThread http(server());
    HttpClient client("");
    TracedTransport traced(client, file);
    auto bob = account(http.url());
    Handshake(traced, bob, "secret").connect(std::nullopt);

    std::ifstream stream(file);
    const std::string trace(std::istreambuf_iterator<char>(stream), {});
    EXPECT_EQ(trace.find("Ym9iOnNlY3JldA=="), std::string::npos);
    for (const auto* const line : {"# deskwatch exchange trace\n", "> Authorization: (not shown)\n",
                                   "> X-MS-PolicyKey: 0\n", "\n>= 03 01 6A 00 00 0E 45", "\n<|     <Policy>\n",
                                   "\n< 200\n", "\n< content-type: application/vnd.ms-sync.wbxml\n"}) {
        EXPECT_NE(trace.find(line), std::string::npos) << line << "\nis not in\n" << trace;
    }
}

} // namespace
} // namespace deskwatch
