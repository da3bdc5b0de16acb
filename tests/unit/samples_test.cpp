#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "TeskConsumerIpcMgr.h"
#include "file_bytes.h"
#include "sample_policies.h"
#include "unit_test.h"

namespace {

using Settings = std::map<std::string, int>;

/// A sample as a mail application's developer finds it, and what the device holds once it is sent, beside the settings
/// of a device that is free.
struct Sample {
    const char* file;
    int accounts;
    Settings settings;
};

const Settings hardened{{"quality", 128},
                        {"minimum_length", 4},
                        {"min_complex_chars", 1},
                        {"expires", 365},
                        {"history", 4},
                        {"max_inactivity_time_device_lock", 900},
                        {"internal_storage_encryption", 1}};
const Settings limits{{"maximum_failed_attempts_for_wipe", 8}, {"max_inactivity_time_device_lock", 900}};

Settings with(const Settings& changes, Settings settings) {
    for (const auto& [name, value] : changes) {
        settings[name] = value;
    }
    return settings;
}

const std::vector<Sample>& accountSamples() {
    static const std::vector<Sample> all{
        {"exchange-default.json", 1, {}},
        {"hardened.json", 1, hardened},
        {"account-info.json", 1, hardened},
        {"init-response.json", 1, hardened},
        {"open-source-server.json", 1, limits},
        {"three-accounts.json", 3, with({{"min_complex_chars", 3}, {"maximum_failed_attempts_for_wipe", 8}}, hardened)},
        {"strictest.json",
         1,
         {{"quality", 128},
          {"minimum_length", 16},
          {"maximum_failed_attempts_for_wipe", 4},
          {"min_complex_chars", 4},
          {"max_inactivity_time_device_lock", 60},
          {"expires", 1},
          {"history", 50},
          {"wifi_state", 0},
          {"messaging_state", 0},
          {"popimap_email_state", 0},
          {"internal_storage_encryption", 1}}},
    };
    return all;
}

constexpr char wipeSample[] = "remote-wipe.json";

/// Messages on their way from the port to the device.
class SamplesTest : public UnitTest {
protected:
    SamplesTest() { TeskConsumerIpcMgr::getInstance()->init(); }

    void send(const std::string& text) {
        journal.clear();
        platform.ports.deliver("req_update_policy", text);
    }

    void sendSample(const std::string& file) { send(bytesOf(std::filesystem::path(TESK_SAMPLES) / file)); }

    /// The settings of the device where they are not those of a free one.
    Settings settings() const {
        const Settings free{{"quality", 0},
                            {"minimum_length", 0},
                            {"maximum_failed_attempts_for_wipe", 10},
                            {"min_complex_chars", 0},
                            {"max_inactivity_time_device_lock", 0},
                            {"expires", 0},
                            {"history", 0},
                            {"wifi_state", 1},
                            {"messaging_state", 1},
                            {"popimap_email_state", 1},
                            {"internal_storage_encryption", 0}};
        Settings others;
        for (const auto& [name, value] : free) {
            if (const int set = platform.devicePolicy.setting(name); set != value) {
                others[name] = set;
            }
        }
        return others;
    }
};

TEST_F(SamplesTest, EverySampleIsTried) {
    std::set<std::string> tried{wipeSample};
    for (const auto& sample : accountSamples()) {
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

TEST_P(AccountSampleTest, IsStoredAndEnforced) {
    sendSample(GetParam().file);

    EXPECT_EQ(storedAccounts(), GetParam().accounts);
    EXPECT_EQ(settings(), GetParam().settings);
    EXPECT_EQ(journal.deviceSettings().size(), 11U) << "they are written once";
}

INSTANTIATE_TEST_SUITE_P(Files, AccountSampleTest, ::testing::ValuesIn(accountSamples()), [](const auto& sample) {
    auto name = std::filesystem::path(sample.param.file).stem().string();
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST_F(SamplesTest, WipeSampleWipesOnce) {
    platform.devicePolicy.registerService();

    sendSample(wipeSample);

    EXPECT_EQ(platform.devicePolicy.wipes, std::vector<int>{1});
    EXPECT_EQ(journal.deviceSettings(), Lines{});
    EXPECT_EQ(storedAccounts(), 0);
}

TEST_F(SamplesTest, RemovedAccountsGiveTheWatchBack) {
    send(samples::indication(1, samples::builtIn));
    send(samples::indication(2, samples::strictest));

    platform.ports.deliver("req_delete_account", "2");
    EXPECT_EQ(settings(), Settings{});
    EXPECT_FALSE(platform.devicePolicy.clients.empty());

    platform.ports.deliver("req_delete_account", "1");
    EXPECT_TRUE(platform.devicePolicy.clients.empty());
    EXPECT_EQ(storedAccounts(), 0);
}

TEST_F(SamplesTest, ManyAccountsOfLongNamesAreKeptWhole) {
    constexpr int accounts = 20;
    const std::string name(1000, 'n');
    std::string entries;
    for (int id = 1; id < accounts; ++id) {
        entries += samples::entry(id, samples::builtIn) + ",";
    }

    send(samples::indicationOf("[" + entries + samples::entry(accounts, samples::hardened, name) + "]"));

    EXPECT_EQ(storedAccounts(), accounts);
    EXPECT_EQ(stored(accounts).accountName, name);
    EXPECT_EQ(settings(), hardened) << "the last one takes part";
    ASSERT_FALSE(platform.launches.sent.empty());
    EXPECT_EQ(platform.launches.sent.back().extraData.at(1).second, name) << "in the popup";
}

} // namespace
