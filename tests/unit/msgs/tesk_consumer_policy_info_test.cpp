#include <memory>

#include "msgs/TeskConsumerItPolicyIndMsg.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

class PolicyInfoTest : public UnitTest {
protected:
    /// Reads a policy set's text.
    static std::shared_ptr<TeskConsumerPolicyInfo> read(const std::string& policySet) {
        g_autoptr(JsonParser) parser = json_parser_new();
        EXPECT_TRUE(json_parser_load_from_data(parser, policySet.c_str(), -1, nullptr)) << policySet;
        return TeskConsumerPolicyInfo::getInstanceFromJsonObject(json_node_get_object(json_parser_get_root(parser)));
    }

    static int lengthOf(const std::string& value) {
        return read("{\"minDevicePasswordLength\":" + value + "}")->minDevicePasswordLength;
    }

    static bool wifiOf(const std::string& value) { return read("{\"allowWifi\":" + value + "}")->allowWifi; }
};

TEST_F(PolicyInfoTest, EveryMemberIsRead) {
    const auto policy = read(samples::strictest);

    EXPECT_EQ(policy->passwordMode, 64);
    EXPECT_FALSE(policy->allowCamera);
    EXPECT_TRUE(policy->devicePasswordEnabled);
    EXPECT_EQ(policy->devicePasswordExpiration, 1);
    EXPECT_EQ(policy->devicePasswordHistory, 50);
    EXPECT_EQ(policy->minDevicePasswordComplexCharacters, 4);
    EXPECT_EQ(policy->maxDevicePasswordFailedAttempts, 4);
    EXPECT_EQ(policy->maxInactivityTimeDeviceLock, 60);
    EXPECT_EQ(policy->minDevicePasswordLength, 16);
    EXPECT_FALSE(policy->passwordRecoveryEnabled);
    EXPECT_TRUE(policy->requireDeviceEncryption);
    EXPECT_EQ(policy->accountId, 0);
    EXPECT_EQ(policy->accountName, "");
    EXPECT_EQ(policy->displayName, "");
}

TEST_F(PolicyInfoTest, EachFlagIsReadFromItsOwnMember) {
    using Info = TeskConsumerPolicyInfo;
    const std::vector<std::pair<std::string, bool Info::*>> flags{
        {"allowCamera", &Info::allowCamera},
        {"allowBluetoothMode", &Info::allowBluetoothMode},
        {"allowBrowser", &Info::allowBrowser},
        {"allowDesktopSync", &Info::allowDesktopSync},
        {"allowInternetSharing", &Info::allowInternetSharing},
        {"allowPOPIMAPEmail", &Info::allowPOPIMAPEmail},
        {"allowSimplePassword", &Info::allowSimplePassword},
        {"allowStorageCard", &Info::allowStorageCard},
        {"allowTextMessaging", &Info::allowTextMessaging},
        {"allowWifi", &Info::allowWifi},
        {"devicePasswordEnabled", &Info::devicePasswordEnabled},
        {"passwordRecoveryEnabled", &Info::passwordRecoveryEnabled},
        {"requireDeviceEncryption", &Info::requireDeviceEncryption},
    };
    for (const auto& [name, member] : flags) {
        const auto policy = read("{\"" + name + "\":true}");
        for (const auto& [otherName, other] : flags) {
            EXPECT_EQ((*policy).*other, other == member) << name << " and " << otherName;
        }
    }
}

TEST_F(PolicyInfoTest, RecordHasEveryValueOfTheSet) {
    const auto policy = read(samples::hardened);
    policy->accountId = 7;
    policy->accountName = "alice@contoso.example";
    policy->displayName = "Alice";

    const std::vector<std::string> expected{"7",
                                            "1",
                                            "0",
                                            "1",
                                            "1",
                                            "4",
                                            "10",
                                            "900",
                                            "0",
                                            "365",
                                            "4",
                                            "1",
                                            "0",
                                            "1",
                                            "1",
                                            "1",
                                            "1",
                                            "1",
                                            "1",
                                            "1",
                                            "1",
                                            "1",
                                            "alice@contoso.example",
                                            "Alice"};
    EXPECT_EQ(fieldsOf(*policy->getPolicyData()), expected);
}

TEST_F(PolicyInfoTest, EachFlagOfTheRecordComesFromItsMember) {
    using Data = TeskPolicyData;
    const std::vector<std::pair<std::string, std::int32_t Data::*>> flags{
        {"devicePasswordEnabled", &Data::devicePasswordEnabled},
        {"allowSimplePassword", &Data::allowSimplePassword},
        {"passwordRecoveryEnabled", &Data::passwordRecoveryEnabled},
        {"requireDeviceEncryption", &Data::requireDeviceEncryption},
        {"allowBluetoothMode", &Data::allowBluetooth},
        {"allowBrowser", &Data::allowBrowser},
        {"allowCamera", &Data::allowCamera},
        {"allowPOPIMAPEmail", &Data::allowPopimapEmail},
        {"allowDesktopSync", &Data::allowDesktopSync},
        {"allowInternetSharing", &Data::allowInternetSharing},
        {"allowStorageCard", &Data::allowStorageCard},
        {"allowTextMessaging", &Data::allowTextMessaging},
        {"allowWifi", &Data::allowWifi},
    };
    for (const auto& [name, field] : flags) {
        const auto data = read("{\"" + name + "\":true}")->getPolicyData();
        for (const auto& [otherName, other] : flags) {
            EXPECT_EQ((*data).*other, other == field ? 1 : 0) << name << " and " << otherName;
        }
    }
}

TEST_F(PolicyInfoTest, EmptySetRequiresAndAllowsNothing) {
    const std::vector<std::string> zeros(22, "0");
    auto fields = fieldsOf(*read("{}")->getPolicyData());

    EXPECT_EQ(fields.back(), "");
    fields.resize(22);
    EXPECT_EQ(fields, zeros);
}

TEST_F(PolicyInfoTest, NewSetIsAnEmptyOne) {
    const TeskConsumerPolicyInfo policy;

    EXPECT_EQ(policy.passwordMode, 0);
    EXPECT_EQ(fieldsOf(*policy.getPolicyData()), fieldsOf(*read("{}")->getPolicyData()));
}

TEST_F(PolicyInfoTest, OnlyModes64And96AreAlphanumeric) {
    const std::vector<std::pair<int, int>> modes{{64, 1}, {96, 1},  {0, 0},    {32, 0},
                                                 {65, 0}, {128, 0}, {-192, 0}, {-160, 0}};
    for (const auto& [mode, expected] : modes) {
        const auto data = read("{\"PasswordMode\":" + std::to_string(mode) + "}")->getPolicyData();
        EXPECT_EQ(data->alphanumericDevicePasswordRequired, expected) << mode;
    }
}

TEST_F(PolicyInfoTest, StorageCardEncryptionCannotBeDelivered) {
    const auto data = read(R"({"requireStorageCardEncryption":true,"requireDeviceEncryption":true})")->getPolicyData();

    EXPECT_EQ(data->requireStorageCardEncryption, 0);
    EXPECT_EQ(data->requireDeviceEncryption, 1);
}

TEST_F(PolicyInfoTest, OddNumbersAreReadAsTheLibraryReadsThem) {
    EXPECT_EQ(lengthOf("4.7"), 4);
    EXPECT_EQ(lengthOf("0.4"), 0);
    EXPECT_EQ(lengthOf("true"), 1);
    EXPECT_EQ(lengthOf("99999999999999999999"), -1);
    EXPECT_EQ(lengthOf("-99999999999999999999"), 1);
    EXPECT_EQ(lengthOf("-4294967300"), -4);
    EXPECT_EQ(lengthOf("4294967300"), 4);
    EXPECT_EQ(lengthOf("010"), 8);
    EXPECT_EQ(lengthOf("0x10"), 16);
    EXPECT_EQ(lengthOf("-1"), -1);
    EXPECT_EQ(lengthOf("2147483648"), -2147483647 - 1);
}

TEST_F(PolicyInfoTest, ValuesThatAreNoNumbersReadAsZero) {
    for (const auto* value : {"\"4\"", "null", "[4]", "{\"a\":4}", "\"\"", "[]"}) {
        EXPECT_EQ(lengthOf(value), 0) << value;
    }
    EXPECT_EQ(read("{}")->minDevicePasswordLength, 0);
}

TEST_F(PolicyInfoTest, OddFlagsAreReadAsTheLibraryReadsThem) {
    for (const auto* value : {"true", "1", "2", "-1", "0.4", "4.7", "99999999999999999999", "4294967300"}) {
        EXPECT_TRUE(wifiOf(value)) << value;
    }
    for (const auto* value : {"false", "0", "0.0", "\"true\"", "null", "[true]", "{}"}) {
        EXPECT_FALSE(wifiOf(value)) << value;
    }
}

TEST_F(PolicyInfoTest, LaterOfTwoEqualMembersCounts) {
    EXPECT_EQ(read(R"({"minDevicePasswordLength":4,"minDevicePasswordLength":9})")->minDevicePasswordLength, 9);
}

TEST_F(PolicyInfoTest, ReadingAndConvertingLogTheirBeginningAndEnd) {
    const auto policy = read("{}");
    policy->getPolicyData();

    EXPECT_EQ(journal.logsOf("getInstanceFromJsonObject"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.logsOf("getPolicyData"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.logs().size(), 4U);
}

} // namespace
