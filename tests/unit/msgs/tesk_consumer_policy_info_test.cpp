#include <limits>
#include <memory>

#include "msgs/TeskConsumerItPolicyIndMsg.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

using Info = TeskConsumerPolicyInfo;
using Data = TeskPolicyData;

class PolicyInfoTest : public UnitTest {
protected:
    /// Reads a policy set's text.
    static std::shared_ptr<Info> read(const std::string& policySet) {
        g_autoptr(JsonParser) parser = json_parser_new();
        EXPECT_TRUE(json_parser_load_from_data(parser, policySet.c_str(), -1, nullptr)) << policySet;
        return Info::getInstanceFromJsonObject(json_node_get_object(json_parser_get_root(parser)));
    }

    static int lengthOf(const std::string& value) {
        return read("{\"minDevicePasswordLength\":" + value + "}")->minDevicePasswordLength;
    }

    static bool wifiOf(const std::string& value) { return read("{\"allowWifi\":" + value + "}")->allowWifi; }
};

/// A flag of a policy set: where it is kept, and the field of the record that it becomes.
struct Flag {
    const char* member;
    bool Info::*info;
    std::int32_t Data::*field;
};

TEST_F(PolicyInfoTest, EachFlagIsReadFromItsOwnMemberAndBecomesItsOwnField) {
    const std::vector<Flag> flags{
        {"allowCamera", &Info::allowCamera, &Data::allowCamera},
        {"allowBluetoothMode", &Info::allowBluetoothMode, &Data::allowBluetooth},
        {"allowBrowser", &Info::allowBrowser, &Data::allowBrowser},
        {"allowDesktopSync", &Info::allowDesktopSync, &Data::allowDesktopSync},
        {"allowInternetSharing", &Info::allowInternetSharing, &Data::allowInternetSharing},
        {"allowPOPIMAPEmail", &Info::allowPOPIMAPEmail, &Data::allowPopimapEmail},
        {"allowSimplePassword", &Info::allowSimplePassword, &Data::allowSimplePassword},
        {"allowStorageCard", &Info::allowStorageCard, &Data::allowStorageCard},
        {"allowTextMessaging", &Info::allowTextMessaging, &Data::allowTextMessaging},
        {"allowWifi", &Info::allowWifi, &Data::allowWifi},
        {"devicePasswordEnabled", &Info::devicePasswordEnabled, &Data::devicePasswordEnabled},
        {"passwordRecoveryEnabled", &Info::passwordRecoveryEnabled, &Data::passwordRecoveryEnabled},
        {"requireDeviceEncryption", &Info::requireDeviceEncryption, &Data::requireDeviceEncryption},
    };
    for (const auto& flag : flags) {
        const auto policy = read(std::string("{\"") + flag.member + "\":true}");
        const auto data = policy->getPolicyData();
        for (const auto& other : flags) {
            SCOPED_TRACE(std::string(flag.member) + " and " + other.member);
            EXPECT_EQ((*policy).*other.info, other.info == flag.info);
            EXPECT_EQ((*data).*other.field, other.info == flag.info ? 1 : 0);
        }
    }
}

TEST_F(PolicyInfoTest, NumbersAndNamesReachTheRecord) {
    const auto policy = read(samples::strictest);
    policy->accountId = 7;
    policy->accountName = "alice@contoso.example";
    policy->displayName = "Alice";

    const auto data = policy->getPolicyData();

    EXPECT_EQ(policy->passwordMode, 64);
    EXPECT_EQ(data->accountId, 7);
    EXPECT_EQ(data->accountName, "alice@contoso.example");
    EXPECT_EQ(data->displayName, "Alice");
    EXPECT_EQ(data->devicePasswordExpiration, 1);
    EXPECT_EQ(data->devicePasswordHistory, 50);
    EXPECT_EQ(data->minDevicePasswordComplexCharacters, 4);
    EXPECT_EQ(data->maxDevicePasswordFailedAttempts, 4);
    EXPECT_EQ(data->maxInactivityTimeDeviceLock, 60);
    EXPECT_EQ(data->minDevicePasswordLength, 16);
}

TEST_F(PolicyInfoTest, EmptySetRequiresAndAllowsNothing) {
    std::vector<std::string> expected(22, "0");
    expected.insert(expected.end(), 2, "");

    EXPECT_EQ(fieldsOf(*read("{}")->getPolicyData()), expected);
    EXPECT_EQ(fieldsOf(*Info().getPolicyData()), expected);
    EXPECT_EQ(Info().passwordMode, 0);
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
    EXPECT_EQ(read(R"({"requireStorageCardEncryption":true})")->getPolicyData()->requireStorageCardEncryption, 0);
}

TEST_F(PolicyInfoTest, OddNumbersAreReadAsTheLibraryReadsThem) {
    const std::vector<std::pair<std::string, int>> numbers{
        {"4.7", 4},
        {"0.4", 0},
        {"true", 1},
        {"99999999999999999999", -1},
        {"-99999999999999999999", 1},
        {"-4294967300", -4},
        {"4294967300", 4},
        {"010", 8},
        {"0x10", 16},
        {"2147483648", std::numeric_limits<int>::min()},
    };
    for (const auto& [text, number] : numbers) {
        EXPECT_EQ(lengthOf(text), number) << text;
    }
    for (const auto* text : {"\"4\"", "null", "[4]", "{\"a\":4}"}) {
        EXPECT_EQ(lengthOf(text), 0) << text;
    }
    EXPECT_EQ(lengthOf("4,\"minDevicePasswordLength\":9"), 9) << "the later of two counts";
}

TEST_F(PolicyInfoTest, OddFlagsAreReadAsTheLibraryReadsThem) {
    for (const auto* value : {"true", "1", "2", "-1", "0.4", "4.7", "99999999999999999999", "4294967300"}) {
        EXPECT_TRUE(wifiOf(value)) << value;
    }
    for (const auto* value : {"false", "0", "0.0", "\"true\"", "null", "[true]", "{}"}) {
        EXPECT_FALSE(wifiOf(value)) << value;
    }
}

TEST_F(PolicyInfoTest, ReadingAndConvertingLogTheirBeginningAndEnd) {
    read("{}")->getPolicyData();

    EXPECT_EQ(journal.logsOf("getInstanceFromJsonObject"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.logsOf("getPolicyData"), (Lines{"I Enter", "I Leave"}));
    EXPECT_EQ(journal.logs().size(), 4U);
}

} // namespace
