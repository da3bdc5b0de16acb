#include <gtest/gtest.h>
#include <message_port.h>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

using Content = std::vector<std::pair<std::string, std::string>>;

/// A message that makes no sense, and the line that tells so in the log; none where the service has nothing to say.
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

std::string repeated(const std::string& text, int times) {
    std::string result;
    result.reserve(text.size() * static_cast<std::size_t>(times));
    for (int time = 0; time < times; ++time) {
        result += text;
    }
    return result;
}

std::string indication(const std::string& param) {
    return R"({"msgId":"email-itpolicy-ind","param":)" + param + "}";
}

constexpr int depth = 100'000;

std::vector<Malformed> requests() {
    return {
        {"UnknownRequest", {{"req", "req_fly"}, {"msg", ""}}, "Unsupported request : req_fly"},
        {"RequestWithABlankBehind", {{"req", "req_update_policy "}, {"msg", ""}}, "Unsupported request : req_update"},
        {"RequestInCapitals", {{"req", "REQ_UPDATE_POLICY"}, {"msg", ""}}, "Unsupported request : REQ_UPDATE"},
        {"RequestOfFormatCharacters", {{"req", "%s%n%99999d"}, {"msg", "%s"}}, "Unsupported request : %s%n%99999d"},
        {"EmptyRequest", {{"req", ""}, {"msg", ""}}, "Unsupported request : "},
        {"MissingRequest", {{"msg", "{}"}}, "Unsupported request : "},
        {"EmptyMessage", {}, "Unsupported request : "},
        {"MissingArgumentOfAnUpdate", {{"req", "req_update_policy"}}, "json_parser_get_root failed"},
        {"MissingArgumentOfADeletion", {{"req", "req_delete_account"}}, "accountId is invalid"},
        {"AccountThatIsNoNumber", {{"req", "req_delete_account"}, {"msg", "{}"}}, "accountId is invalid"},
        {"AccountThatIsNegative", {{"req", "req_delete_account"}, {"msg", "-7"}}, "accountId is invalid"},
        {"AccountBeyondAllNumbers", {{"req", "req_delete_account"}, {"msg", "99999999999999999999"}}, ""},
    };
}

std::vector<Malformed> envelopes() {
    return {
        {"EmptyText", update(""), "json_parser_get_root failed"},
        {"NoJson", update("hello"), "json_parser_get_root failed"},
        {"TextThatBreaksOff", update(R"({"msgId":"email-itpolicy-ind","param":[{)"), ""},
        {"StringThatBreaksOff", update(R"({"msgId":"email-itpol)"), ""},
        {"RootThatIsAnArray", update("[1,2]"), "json_node_get_object failed"},
        {"RootThatIsANumber", update("7"), "json_node_get_object failed"},
        {"RootThatIsNull", update("null"), "json_node_get_object failed"},
        {"ArraysNestedTooDeep", update(repeated("[", depth)), "json_parser_get_root failed"},
        {"ObjectsNestedTooDeep", update(repeated("{\"a\":", depth)), "json_parser_get_root failed"},
        {"ParamNestedTooDeep", update(indication(repeated("[", depth))), "json_parser_get_root failed"},
        {"MissingKind", update("{}"), "this is not request msgId: "},
        {"KindThatIsANumber", update(R"({"msgId":7})"), "this is not request msgId: "},
        {"KindThatIsNull", update(R"({"msgId":null})"), "this is not request msgId: "},
        {"KindThatIsAnObject", update(R"({"msgId":{}})"), "this is not request msgId: "},
        {"KindInCapitals", update(R"({"msgId":"EMAIL-INIT-RES"})"), "this is not request msgId: EMAIL-INIT-RES"},
    };
}

std::vector<Malformed> params() {
    return {
        {"MissingParam", update(R"({"msgId":"email-itpolicy-ind"})"), "json_object_get_object_member failed"},
        {"ParamThatIsAnObject", update(indication("{}")), "json_object_get_object_member failed"},
        {"ParamThatIsAText", update(indication("\"a\"")), "json_object_get_object_member failed"},
        {"ParamThatIsNull", update(indication("null")), "json_object_get_object_member failed"},
        {"EntriesThatAreNoObjects", update(indication(R"([1,"a",null,[],true,[{}]])")), ""},
        {"EntryWithoutAnything", update(indication("[{}]")), ""},
        {"EntryWithoutPolicySet", update(indication(R"([{"accountId":1,"accountName":"a"}])")), ""},
        {"PolicySetThatIsAnArray", update(indication(R"([{"accountId":1,"accountName":"a","policySet":[]}])")), ""},
        {"PolicySetThatIsNull", update(indication(R"([{"accountId":1,"accountName":"a","policySet":null}])")), ""},
        {"MissingAccountId", update(indication(R"([{"accountName":"a","policySet":{}}])")), "accountId is invalid"},
        {"AccountIdThatIsNegative", update(indication(R"([{"accountId":-3,"accountName":"a","policySet":{}}])")),
         "accountId is invalid"},
        {"AccountIdThatIsAText", update(indication(R"([{"accountId":"1","accountName":"a","policySet":{}}])")),
         "accountId is invalid"},
        {"AccountIdBeyondAllNumbers",
         update(indication(R"([{"accountId":99999999999999999999,"accountName":"a","policySet":{}}])")),
         "accountId is invalid"},
    };
}

std::vector<Malformed> accountLists() {
    return {
        {"AccountInfoWithoutList", update(R"({"msgId":"email-account-info"})"), ""},
        {"AccountInfoWithAListInParam", update(R"({"msgId":"email-account-info","param":{"accountId":[]}})"), ""},
        {"AccountInfoWithANumberForAList", update(R"({"msgId":"email-account-info","accountId":1})"), ""},
        {"AccountInfoOfNoObjects", update(R"({"msgId":"email-account-info","accountId":[1,null,"a",[]]})"), ""},
        {"AccountInfoWithoutNames", update(R"({"msgId":"email-account-info","accountId":[{"id":0,"policySet":{}}]})"),
         "accountId is invalid"},
        {"InitResponseWithoutParam", update(R"({"msgId":"email-init-res"})"), "json_object_get_object_member failed"},
        {"InitResponseWithAnArrayForParam", update(R"({"msgId":"email-init-res","param":[]})"),
         "json_object_get_object_member failed"},
        {"InitResponseWithoutList", update(R"({"msgId":"email-init-res","param":{}})"), ""},
        {"InitResponseOfNoObjects", update(R"({"msgId":"email-init-res","param":{"accountId":[7,[],null]}})"), ""},
    };
}

class MalformedInput : public testing::TestWithParam<Malformed> {};

TEST_P(MalformedInput, ChangesNothingAndTheNextUpdateWorks) {
    const TestDevice device;
    device.launchService();
    const auto service = device.servicePid();

    ASSERT_EQ(sendMessage(GetParam().content), MESSAGE_PORT_ERROR_NONE);
    device.companions().settle(ids::service);

    EXPECT_GE(device.log().count(GetParam().complaint), 1);
    EXPECT_EQ(storedRows(device.database()), std::vector<Row>{});
    device.send("req_update_policy", policyUpdate({bob(hardenedPolicy)}));
    EXPECT_EQ(device.servicePid(), service);
    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"2"});
    EXPECT_EQ(settings(), (Settings{128, 4, 10, 1, 900, 365, 4, 1, 1, 1, 1}));
    EXPECT_EQ(device.companions().launches(ids::popup).size(), 1U);
}

std::string malformedName(const testing::TestParamInfo<Malformed>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Request, MalformedInput, testing::ValuesIn(requests()), malformedName);
INSTANTIATE_TEST_SUITE_P(Envelope, MalformedInput, testing::ValuesIn(envelopes()), malformedName);
INSTANTIATE_TEST_SUITE_P(Param, MalformedInput, testing::ValuesIn(params()), malformedName);
INSTANTIATE_TEST_SUITE_P(AccountList, MalformedInput, testing::ValuesIn(accountLists()), malformedName);

/// The numbers of the only stored account's policy, without its id and names.
Row onlyNumbers(const TestDevice& device) {
    const Row row = storedRows(device.database()).at(0);
    return {row.begin() + 1, row.end() - 2};
}

TEST(OddInput, MissingNameIsStoredAsAnEmptyOne) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", indication(std::string(R"([{"accountId":1,"policySet":)") + pinPolicy + "}]"));

    EXPECT_EQ(storedRows(device.database()).at(0).at(22), "");
    EXPECT_EQ(device.companions().launches(ids::popup).at(0).extraData.at("ACCOUNT_NAME"), "");
}

TEST(OddInput, EntryBehindAnUnusableOneIsStored) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy",
                indication(std::string(R"([7,{"accountId":5},{"accountId":1,"accountName":"a","policySet":)") +
                           pinPolicy + "}]"));

    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
}

TEST(OddInput, EmptyPolicySetForbidsWhatItDoesNotName) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice("{}")}));

    EXPECT_EQ(onlyNumbers(device), Row(21, "0"));
    EXPECT_EQ(settings(), (Settings{0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(OddInput, MembersOfTheWrongKindCountAsZero) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(R"({"minDevicePasswordLength":"4","allowWifi":"yes",)"
                                                         R"("devicePasswordHistory":[4],"devicePasswordEnabled":null,)"
                                                         R"("PasswordMode":{},"maxInactivityTimeDeviceLock":null})")}));

    EXPECT_EQ(onlyNumbers(device), Row(21, "0"));
}

TEST(OddInput, NumbersOutOfRangeAreStoredAsTheLibraryGivesThem) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy",
                policyUpdate({alice(R"({"devicePasswordEnabled":true,"minDevicePasswordLength":99999999999999999999,)"
                                    R"("devicePasswordHistory":4294967300,"devicePasswordExpiration":4.7,)"
                                    R"("maxDevicePasswordFailedAttempts":-5,"PasswordMode":64,)"
                                    R"("minDevicePasswordComplexCharacters":2147483647})")}));

    const Row row = storedRows(device.database()).at(0);
    EXPECT_EQ(row.at(4), "2147483647");
    EXPECT_EQ(row.at(5), "-1");
    EXPECT_EQ(row.at(6), "-5");
    EXPECT_EQ(row.at(9), "4");
    EXPECT_EQ(row.at(10), "4");
    EXPECT_EQ(enforcingAccount(), 1) << "its score must not overflow";
}

TEST(OddInput, TextBehindTheRootIsIgnored) {
    const TestDevice device;
    device.launchService();

    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}) + " }] and more");

    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
}

TEST(OddInput, NameThatLooksLikeSqlIsStoredAsItIs) {
    const TestDevice device;
    device.launchService();
    const std::string name = "x'); drop table eas_policy_tbl; --%s%n";

    device.send("req_update_policy", policyUpdate({{1, name, pinPolicy}}));

    EXPECT_EQ(storedRows(device.database()).at(0).at(22), name);
    EXPECT_EQ(device.companions().launches(ids::popup).at(0).extraData.at("ACCOUNT_NAME"), name);
}

TEST(OddInput, LongNameIsStoredWhole) {
    const TestDevice device;
    device.launchService();
    const std::string name(1'000'000, 'n');

    device.send("req_update_policy", policyUpdate({{1, name, pinPolicy}}));

    EXPECT_EQ(storedRows(device.database()).at(0).at(22).size(), name.size());
    EXPECT_EQ(device.companions().launches(ids::popup).at(0).extraData.at("ACCOUNT_NAME").size(), name.size());
}

TEST(OddInput, TextThatIsNotUtf8IsRefusedAtTheSender) {
    const TestDevice device;
    device.launchService();

    const int result = sendMessage(update("{\"msgId\":\"\xff\xfe\"}"));

    EXPECT_EQ(result, MESSAGE_PORT_ERROR_INVALID_PARAMETER);
    device.companions().settle(ids::service);
    EXPECT_EQ(device.log().count("getWorker"), 0) << "nothing arrived";
    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
}

} // namespace
} // namespace system_test
