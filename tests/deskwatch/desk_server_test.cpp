#include "exchange_server/desk_server.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

#include "exchange/provision_messages.h"
#include "hexadecimal.h"
#include "temporary_folder.h"
#include "wbxml/element_xml.h"
#include "wbxml/wbxml_codec.h"

namespace deskwatch {
namespace {

/// A server with a policy for ann and bob and none for anybody else, and bob's device.
class TheDeskServer : public testing::Test {
protected:
    TheDeskServer() { write("<MinDevicePasswordLength>6</MinDevicePasswordLength>"); }

    void write(const std::string& elements) const {
        std::ofstream(file_) << "<EASProvisionDoc>" << elements << "</EASProvisionDoc>";
    }

    ServerAnswer send(const std::string& command, const std::string& body, const std::string& key,
                      const std::string& user = "bob", const std::string& device = "desk1") {
        const std::string authorization = user == "bob" ? "Basic Ym9iOg==" : "Basic YWxpY2U6"; // without a password
        return server_.answer({"POST",
                               "Cmd=" + command + "&User=" + user + "&DeviceId=" + device + "&DeviceType=DeskWatch",
                               {{"authorization", authorization},
                                {"content-type", "application/vnd.ms-sync.wbxml"},
                                {"ms-asprotocolversion", version_},
                                {"x-ms-policykey", key}},
                               body});
    }

    ProvisionReply provision(const WbxmlElement& request, const std::string& key = "0") {
        return readProvisionReply(decodeWbxml(send("Provision", encodeWbxml(request), key).body), 141);
    }

    /// The Status of an answer to FolderSync.
    int folderSync(const std::string& key) {
        return statusOf(decodeWbxml(send("FolderSync", "", key).body)).value_or(0);
    }

    /// The final key of a whole handshake.
    std::string accept() {
        const auto first = provision(policyRequest(141, true));
        return provision(acknowledgement(141, first.policyKey, Compliance::Applied)).policyKey;
    }

    DeskServer& server() { return server_; }
    void setVersion(const std::string& version) { version_ = version; }

private:
    TemporaryFolder folder_;
    std::string file_ = (folder_.path() / "bob.xml").string();
    bool isWritten_ = (write(""), true);
    DeskServer server_{ServedPolicies({"ann=" + file_, "bob=" + file_}), "12.1,14.1", std::nullopt};
    std::string version_ = "14.1";
};

TEST(ServedPolicies, ComeInAnyFormatThatBringsOnePolicy) {
    for (const char* file : {"/policies/format-list.txt", "/policies/grommunio.json", "/policies/reply.hex"}) {
        const auto document = ServedPolicies({std::string(SAMPLES) + file}).documentOf("bob");
        ASSERT_TRUE(document) << file;
        const auto* const enabled = document->child("DevicePasswordEnabled");
        ASSERT_NE(enabled, nullptr) << file;
        EXPECT_EQ(enabled->text, "1") << file;
    }
    EXPECT_THROW(ServedPolicies({SAMPLES "/policies/policies.ini"}), std::runtime_error) << "it has two";
}

TEST_F(TheDeskServer, FinalKeyOpensTheCommandsUntilThePolicyChanges) {
    EXPECT_EQ(folderSync(""), 141);
    EXPECT_EQ(folderSync("0"), 142);
    const auto key = accept();
    EXPECT_EQ(folderSync(key), 1);
    EXPECT_EQ(folderSync("0"), 144);
    write("<MinDevicePasswordLength>8</MinDevicePasswordLength>");
    EXPECT_EQ(folderSync(key), 144);
    setVersion("12.1");
    EXPECT_EQ(send("FolderSync", "", key).status, 449);
}

TEST_F(TheDeskServer, TemporaryKeyIsGoodForOneAcknowledgementInTheRightForm) {
    const auto first = provision(policyRequest(141, true));
    ASSERT_EQ(first.elements.size(), 1U);
    EXPECT_EQ(first.elements[0].value, "6");
    EXPECT_EQ(provision(acknowledgement(141, "1", Compliance::Applied)).policyStatus, 5);
    auto backwards = acknowledgement(141, first.policyKey, Compliance::Applied);
    auto& policy = backwards.children[0].children[0].children;
    std::swap(policy[1], policy[2]);
    EXPECT_EQ(provision(backwards).status, 2);
    EXPECT_EQ(provision(acknowledgement(141, first.policyKey, Compliance::Applied)).policyStatus, 1);
    EXPECT_EQ(provision(acknowledgement(141, first.policyKey, Compliance::Applied)).policyStatus, 5);
}

TEST_F(TheDeskServer, RefusedPolicyBringsNoKey) {
    const auto first = provision(policyRequest(141, true));
    EXPECT_EQ(provision(acknowledgement(141, first.policyKey, Compliance::Refused)).policyKey, "");
    EXPECT_EQ(folderSync(first.policyKey), 142);
    EXPECT_NE(server().report().find("bob"), std::string::npos);
}

TEST_F(TheDeskServer, FaultyRequestsAreToldApart) {
    EXPECT_EQ(provision(policyRequest(141, false)).status, 165);
    const auto foreign = send("Provision", encodeWbxml(policyRequest(25, true)), "0");
    EXPECT_EQ(readProvisionReply(decodeWbxml(foreign.body), 25).policyStatus, 3);
    EXPECT_EQ(provision(provisionElement("Provision")).status, 2);
    EXPECT_EQ(statusOf(decodeWbxml(send("Provision", "no WBXML", "0").body)), 102);
    EXPECT_EQ(send("Sync", "", "0").status, 501);
    setVersion("3.0");
    EXPECT_EQ(send("Provision", "", "0").status, 400);
    EXPECT_EQ(server().answer({"POST", "", {}, ""}).status, 401);
}

TEST_F(TheDeskServer, UserWithoutAPolicyMayGoOn) {
    const auto reply = decodeWbxml(send("Provision", encodeWbxml(policyRequest(141, true)), "0", "alice").body);
    EXPECT_EQ(readProvisionReply(reply, 141).policyStatus, 2);
    EXPECT_EQ(statusOf(decodeWbxml(send("FolderSync", "", "0", "alice").body)), 1);
    EXPECT_NO_THROW(server().order({"alice", "slow", "1"})) << "known by her device";
}

TEST_F(TheDeskServer, WipeStaysOrderedUntilTheDeviceIsForgotten) {
    const auto key = accept();
    server().order({"bob", "wipe", ""});
    EXPECT_EQ(folderSync(key), 140);
    EXPECT_EQ(provision(policyRequest(141, true)).wipe, WipeOrder::Device);
    EXPECT_EQ(provision(wipeReport(WipeOrder::Device)).status, 1);
    EXPECT_NE(server().report().find("reported with 1"), std::string::npos);
    EXPECT_EQ(folderSync(key), 140);
    server().order({"bob", "forget", ""});
    EXPECT_EQ(folderSync("0"), 142);
}

TEST_F(TheDeskServer, OrderSpoilsTheNextAnswerAlone) {
    server().order({"bob", "http", "507"});
    EXPECT_EQ(send("FolderSync", "", "0").status, 507);
    server().order({"bob", "status", "177"});
    EXPECT_EQ(provision(policyRequest(141, true)).status, 177);
    server().order({"bob", "broken", ""});
    EXPECT_THROW(provision(policyRequest(141, true)), std::runtime_error);
    EXPECT_EQ(provision(policyRequest(141, true)).status, 1);
    EXPECT_THROW(server().order({"bob", "smile", ""}), std::runtime_error);
    EXPECT_THROW(server().order({"ann", "wipe", ""}), std::runtime_error) << "has no device";
    try {
        server().order({"bobb", "slow", "1"});
        ADD_FAILURE() << "the user is not known";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), R"("bobb" is not a user of this server; it knows ann, bob; did you mean "bob"?)");
    }
    EXPECT_THROW(server().order({"bob", "http", "many"}), std::runtime_error);
}

TEST_F(TheDeskServer, DevicesBeyondAThousandAreRefusedAndTheOthersServed) {
    for (int device = 1; device <= 1000; ++device) {
        ASSERT_EQ(send("FolderSync", "", "0", "bob", "desk" + std::to_string(device)).status, 200) << device;
    }
    EXPECT_EQ(send("FolderSync", "", "0", "bob", "desk1001").status, 400);
    EXPECT_EQ(send("FolderSync", "", "0", "bob", "desk1000").status, 200);
}

TEST_F(TheDeskServer, NumbersOfOrdersHaveBothTheirBounds) {
    for (const auto& [order, least, most] : {std::tuple("http", 100, 999), {"slow", 0, 999}}) {
        for (const int number : {least, most}) {
            EXPECT_NO_THROW(server().order({"bob", order, std::to_string(number)})) << order << number;
        }
        for (const int number : {least - 1, most + 1}) {
            EXPECT_THROW(server().order({"bob", order, std::to_string(number)}), std::runtime_error) << order << number;
        }
    }
}

TEST_F(TheDeskServer, RequestOfAnotherClientIsUnderstood) {
    const auto request = bytesOf("03 01 6A 00 00 0E 45 00 12 56 48 57 03 57 61 74 63 68 00 01 01 01 00 0E 46 47 " +
                                 wbxmlTypeBytes + "01 01 01");
    const auto reply = readProvisionReply(decodeWbxml(send("Provision", request, "0").body), 141);
    EXPECT_EQ(reply.policyStatus, 1);
    EXPECT_TRUE(reply.hasDocument);
    EXPECT_EQ(send("Provision", request, "0").headers.front().second, "application/vnd.ms-sync.wbxml");
}

} // namespace
} // namespace deskwatch
