#include "policy_files/policy_file.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace deskwatch {
namespace {

std::string refusal(const std::function<void()>& call) {
    try {
        call();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "no refusal";
}

TEST(ReadPolicyFile, LastPolicyOfATraceCountsAsAClientTakesIt) {
    const auto policy = [](const std::string& length) {
        return "< 200\n<| <?xml version=\"1.0\"?>\n<| <Provision><EASProvisionDoc>\n<|   <MinDevicePasswordLength>" +
               length + "</MinDevicePasswordLength>\n<|   <MinDevicePasswordLength>" + length +
               "</MinDevicePasswordLength>\n<| </EASProvisionDoc></Provision>\n<= 03 01\n\n";
    };
    const std::string head = "# deskwatch exchange trace\n\n> POST\n>| <Provision><EASProvisionDoc/></Provision>\n";
    const auto content = readPolicyFile("t", head + policy("6") + policy("99") + "< 200\n<| <Provision/>\n");
    const auto& elements = chosenPolicy("t", content, "").elements;
    ASSERT_EQ(elements.size(), 1U);
    EXPECT_EQ(elements[0].value, "16");
    EXPECT_EQ(elements[0].line, 16);
    EXPECT_EQ(content.remarks, std::vector<std::string>{"MinDevicePasswordLength \"99\" is taken as 16"});
    EXPECT_EQ(refusal([&] { readPolicyFile("t", head); }), "t: no server sent a policy in this trace");
}

TEST(ChosenPolicy, NamesAreToldWhenTheChoiceIsOpen) {
    const PolicyFile two{{{"Field staff", {}}, {"Office", {}}}, {}, {}};
    EXPECT_EQ(chosenPolicy("p", two, "Office").name, "Office");
    EXPECT_EQ(refusal([&] { chosenPolicy("p", two, ""); }),
              "p has 2 policies; choose one with --policy: \"Field staff\", \"Office\"");
    EXPECT_EQ(refusal([&] { chosenPolicy("p", two, "office"); }),
              "p has no policy \"office\"; it has \"Field staff\", \"Office\"");
    EXPECT_EQ(refusal([] { chosenPolicy("p", {}, ""); }), "p brings no policy");
}

TEST(NoticeText, SaysWhatTheServerMeans) {
    using Kind = ServerNotice::Kind;
    EXPECT_EQ(noticeText("p", {Kind::Status, "140", 3}),
              "p:3: the server answers with Status 140, the server orders a wipe");
    EXPECT_EQ(noticeText("p", {Kind::PolicyStatus, "2", 0}),
              "p: the server answers with Status of the policy 2, there is no policy for this user");
    EXPECT_EQ(noticeText("p", {Kind::Status, "x", 1}), "p:1: the Status is \"x\", which is not a number");
    EXPECT_EQ(noticeText("p", {Kind::AccountWipe, "", 1}).find("p:1: the server orders to remove the account"), 0U);
}

} // namespace
} // namespace deskwatch
