#include <json-glib/json-glib.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include "TeskConsumerIpcMgr.h"
#include "unit_test.h"

namespace {

std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// A sample as a mail application's developer finds it, and where its accounts are.
struct Sample {
    const char* file;
    int accounts;
    const char* idMember;
    const char* nameMember; ///< what becomes the display name
};

const std::array<Sample, 7> accountSamples{{
    {"exchange-default.json", 1, "accountId", "accountName"},
    {"hardened.json", 1, "accountId", "accountName"},
    {"open-source-server.json", 1, "accountId", "accountName"},
    {"strictest.json", 1, "accountId", "accountName"},
    {"three-accounts.json", 3, "accountId", "accountName"},
    {"account-info.json", 1, "id", "displayName"},
    {"init-response.json", 1, "id", "displayName"},
}};
constexpr char wipeSample[] = "remote-wipe.json";

class SamplesTest : public UnitTest {
protected:
    SamplesTest() {
        platform.devicePolicy.registerService();
        TeskConsumerIpcMgr::getInstance()->init();
    }

    static std::filesystem::path pathOf(const std::string& file) { return std::filesystem::path(TESK_SAMPLES) / file; }

    void send(const std::string& text) { platform.ports.deliver("req_update_policy", text); }

    /// Compares a stored account with the entry that it came from.
    static void expectStored(const Sample& sample, JsonObject* entry) {
        const auto data = stored(static_cast<int>(json_object_get_int_member(entry, sample.idMember)));
        EXPECT_EQ(data.accountName, json_object_get_string_member(entry, "accountName"));
        EXPECT_EQ(data.displayName, json_object_get_string_member(entry, sample.nameMember));
        auto* const set = json_object_get_object_member(entry, "policySet");
        expectMembers(set, data);
        EXPECT_EQ(data.alphanumericDevicePasswordRequired,
                  json_object_get_int_member(set, "PasswordMode") == 64 ? 1 : 0);
        EXPECT_EQ(data.requireStorageCardEncryption, 0);
    }

    static void expectMembers(JsonObject* set, const TeskPolicyData& data) {
        for (const auto& [member, value] : std::initializer_list<std::pair<const char*, int>>{
                 {"allowBluetoothMode", data.allowBluetooth},
                 {"allowBrowser", data.allowBrowser},
                 {"allowCamera", data.allowCamera},
                 {"allowDesktopSync", data.allowDesktopSync},
                 {"allowInternetSharing", data.allowInternetSharing},
                 {"allowPOPIMAPEmail", data.allowPopimapEmail},
                 {"allowSimplePassword", data.allowSimplePassword},
                 {"allowStorageCard", data.allowStorageCard},
                 {"allowTextMessaging", data.allowTextMessaging},
                 {"allowWifi", data.allowWifi},
                 {"devicePasswordEnabled", data.devicePasswordEnabled},
                 {"devicePasswordExpiration", data.devicePasswordExpiration},
                 {"devicePasswordHistory", data.devicePasswordHistory},
                 {"maxDevicePasswordFailedAttempts", data.maxDevicePasswordFailedAttempts},
                 {"maxInactivityTimeDeviceLock", data.maxInactivityTimeDeviceLock},
                 {"minDevicePasswordComplexCharacters", data.minDevicePasswordComplexCharacters},
                 {"minDevicePasswordLength", data.minDevicePasswordLength},
                 {"passwordRecoveryEnabled", data.passwordRecoveryEnabled},
                 {"requireDeviceEncryption", data.requireDeviceEncryption},
             }) {
            EXPECT_EQ(json_object_get_int_member_with_default(set, member, -1), value) << member;
        }
    }

    /// The entries with a policy, wherever the kind of message keeps them.
    static std::vector<JsonObject*> entriesOf(JsonObject* root) {
        JsonArray* list = nullptr;
        if (json_object_has_member(root, "accountId")) {
            list = json_object_get_array_member(root, "accountId");
        } else if (JSON_NODE_HOLDS_ARRAY(json_object_get_member(root, "param"))) {
            list = json_object_get_array_member(root, "param");
        } else {
            list = json_object_get_array_member(json_object_get_object_member(root, "param"), "accountId");
        }
        std::vector<JsonObject*> entries;
        for (guint i = 0; i < json_array_get_length(list); ++i) {
            auto* const entry = json_array_get_object_element(list, i);
            if (json_object_has_member(entry, "policySet")) {
                entries.push_back(entry);
            }
        }
        return entries;
    }
};

TEST_F(SamplesTest, EverySampleIsTried) {
    std::set<std::string> tried{wipeSample};
    for (const auto& sample : accountSamples) {
        tried.insert(sample.file);
    }
    std::set<std::string> samples;
    for (const auto& entry : std::filesystem::directory_iterator(TESK_SAMPLES)) {
        if (entry.path().extension() == ".json") {
            samples.insert(entry.path().filename());
        }
    }
    EXPECT_EQ(tried, samples);
}

class AccountSampleTest : public SamplesTest, public ::testing::WithParamInterface<Sample> {};

TEST_P(AccountSampleTest, IsStoredMemberByMember) {
    const auto text = contentsOf(pathOf(GetParam().file));
    g_autoptr(JsonParser) parser = json_parser_new();
    ASSERT_TRUE(json_parser_load_from_data(parser, text.c_str(), -1, nullptr));
    const auto entries = entriesOf(json_node_get_object(json_parser_get_root(parser)));

    send(text);

    EXPECT_EQ(storedAccounts(), GetParam().accounts);
    EXPECT_EQ(entries.size(), static_cast<std::size_t>(GetParam().accounts));
    for (auto* entry : entries) {
        expectStored(GetParam(), entry);
    }
    EXPECT_EQ(journal.deviceSettings().size(), 11U);
}

INSTANTIATE_TEST_SUITE_P(Files, AccountSampleTest, ::testing::ValuesIn(accountSamples), [](const auto& sample) {
    std::string name;
    for (const char* at = sample.param.file; *at != '.'; ++at) {
        name += *at == '-' ? '_' : *at;
    }
    return name;
});

TEST_F(SamplesTest, WipeSampleWipesOnce) {
    send(contentsOf(pathOf(wipeSample)));

    EXPECT_EQ(platform.devicePolicy.wipes, std::vector<int>{1});
    EXPECT_EQ(storedAccounts(), 0);
}

} // namespace
