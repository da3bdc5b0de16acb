#include <gtest/gtest.h>
#include <message_port.h>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

using Content = std::vector<std::pair<std::string, std::string>>;

/// A message that makes no sense, and the line that tells so in the log. The unit tests hold every kind of them; here
/// are those that the way to the service, its stack or its log could treat in another way.
struct Malformed {
    const char* name;
    Content content;
    const char* complaint;
};

void PrintTo(const Malformed& input, std::ostream* output) {
    *output << input.name;
}

Content update(const std::string& text) {
    return {{"req", "req_update_policy"}, {"msg", text}};
}

std::vector<Malformed> messages() {
    return {
        {"EmptyMessage", {}, "Unsupported request : "},
        {"RequestOfFormatCharacters", {{"req", "%s%n%99999d"}, {"msg", "%s"}}, "Unsupported request : %s%n%99999d"},
        {"MissingArgument", {{"req", "req_update_policy"}}, "json_parser_get_root failed"},
        {"EmptyArgument", {{"req", "req_delete_account"}, {"msg", ""}}, "accountId is invalid"},
        {"TextThatBreaksOff", update(R"({"msgId":"email-itpolicy-ind","param":[{)"), "json_parser_get_root failed"},
        {"TextNestedTooDeep", update(std::string(10'000, '[')), "json_parser_get_root failed"},
    };
}

class MalformedInput : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedInput, ChangesNothingAndTheNextUpdateWorks) {
    const TestDevice device;
    device.launchService();
    const auto service = device.servicePid();

    ASSERT_EQ(sendMessage(GetParam().content), MESSAGE_PORT_ERROR_NONE);
    device.companions().settle(ids::service);

    EXPECT_EQ(device.log().count(GetParam().complaint), 1);
    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{});
    device.send("req_update_policy", policyUpdate({bob(hardenedPolicy)}));
    EXPECT_EQ(device.servicePid(), service);
    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"2"});
    EXPECT_EQ(settings(), hardenedSettings);
}

INSTANTIATE_TEST_SUITE_P(, MalformedInput, testing::ValuesIn(messages()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(OddInput, LongNameOfOddCharactersReachesThePopupWhole) {
    const TestDevice device;
    device.launchService();
    const std::string name = "j\u00fcrgen\u20ac'); drop table eas_policy_tbl; --%s%n" + std::string(5'000, 'n');

    device.send("req_update_policy", policyUpdate({{1, name, pinPolicy}}));

    EXPECT_TRUE(device.companions().launches(ids::popup).at(0).extraData.at("ACCOUNT_NAME") == name);
}

} // namespace
} // namespace system_test
