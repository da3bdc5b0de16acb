#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <random>

#include "TeskConsumerAccountMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "explain/explanation.h"
#include "explain/forecast.h"
#include "fake_platform.h"
#include "msgs/TeskConsumerEnvelope.h"
#include "msgs/TeskConsumerItPolicyIndMsg.h"
#include "msgs/TeskConsumerJson.h"
#include "random_policies.h"
#include "req_workers/TeskConsumerPolicyWorker.h"
#include "status/policy_database.h"

namespace deskwatch {
namespace {

constexpr int rounds = 200;

/// The seed, new in each run, or that of an earlier run to see it again.
unsigned seed() {
    const char* given = std::getenv("TESK_SEED");
    return given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
}

/// The policies of a message, by the service's own reader.
std::vector<TeskPolicyData> policiesOf(const std::string& message) {
    std::vector<TeskPolicyData> policies;
    const TeskConsumerEnvelope envelope(message);
    JsonArray* const entries = TeskConsumerJson::arrayMember(envelope.root(), "param");
    TeskConsumerJson::forEachObject(entries, [&policies](JsonObject* entry) {
        const auto policy =
            TeskConsumerPolicyInfo::getInstanceFromJsonObject(TeskConsumerJson::objectMember(entry, "policySet"));
        policy->accountId = TeskConsumerJson::intMember(entry, "accountId");
        policy->accountName = TeskConsumerJson::textMember(entry, "accountName");
        policies.push_back(*policy->getPolicyData());
    });
    return policies;
}

/// Keeps temporary files in memory, where there is room for that: the many small writes need not reach a disk.
struct FilesInMemory {
    FilesInMemory() {
        constexpr char folder[] = "/dev/shm";
        if (access(folder, W_OK) == 0) {
            setenv("TMPDIR", folder, 1);
        }
    }
};

class Agreement : public testing::Test {
protected:
    /// A fresh watch in a random state, with nothing stored.
    void renew() {
        for (const auto& account : facts().accounts) {
            TeskConsumerAccountMgr::getInstance()->delAccount(account->accountId);
        }
        platform_.devicePolicy.settings.clear();
        platform_.settings.setKeyAsDevice("db/rgn/country_iso",
                                          random_.oneOf<std::string>({"US", "KR", "K", "", "FR"}));
        platform_.settings.setKeyAsDevice("db/ode/crypto_state",
                                          random_.oneOf<std::string>({"unencrypted", "unencrypted", "encrypted"}));
        platform_.settings.setKeyAsDevice("db/setting/lock_type", random_.number(0, 2));
        platform_.settings.setKeyAsDevice("memory/private/com.velmor.hearth/tutorial_is_in_progress",
                                          random_.number(1, 8) == 1 ? 1 : 0);
        platform_.launches.sent.clear();
        platform_.journal.clear();
    }

    DeviceFacts facts() const {
        DeviceFacts facts;
        facts.accounts = policyRecords(readStoredAccounts(platform_.dataPath + "dbspace/.tesk.db"));
        std::transform(deviceSettings.begin(), deviceSettings.end(), facts.settings.begin(),
                       [this](const DeviceSetting& setting) { return held(setting.name); });
        facts.lockType = platform_.settings.integer("db/setting/lock_type").value_or(0);
        facts.country = platform_.settings.text("db/rgn/country_iso");
        facts.cryptoState = platform_.settings.text("db/ode/crypto_state");
        facts.isTutorialShown =
            platform_.settings.integer("memory/private/com.velmor.hearth/tutorial_is_in_progress").value_or(0) != 0;
        return facts;
    }

    void send(const std::string& message) {
        platform_.launches.sent.clear();
        TeskConsumerPolicyWorker().process(message.c_str());
    }

    std::vector<std::string> launched() const {
        std::vector<std::string> applications;
        for (const auto& launch : platform_.launches.sent) {
            applications.push_back(launch.appId);
        }
        return applications;
    }

    int enforcingAccount() const {
        return std::get<int>(platform_.preferences.at("pref/tesk-agent/pwd_enforce_account_id"));
    }

    RandomPolicies& random() { return random_; }
    unsigned usedSeed() const { return seed_; }

private:
    int held(const std::string& name) const {
        return name == "messaging_state" ? platform_.devicePolicy.messaging("*") : platform_.devicePolicy.setting(name);
    }

    unsigned seed_ = seed();
    RandomPolicies random_{seed_};
    FilesInMemory filesInMemory_;
    fake::FakePlatform platform_;
};

std::vector<std::string> applications(const Forecast& forecast) {
    std::vector<std::string> applications;
    for (const auto& screen : forecast.screens) {
        applications.push_back(screen.application);
    }
    return applications;
}

std::vector<int> numbersOf(const TeskPolicyData& policy) {
    std::vector<int> numbers;
    numbers.reserve(TeskPolicyTable::numbers.size());
    for (const auto& number : TeskPolicyTable::numbers) {
        numbers.push_back(policy.*number.field);
    }
    return numbers;
}

TEST_F(Agreement, ForecastIsWhatTheServiceThenDoes) {
    std::cout << "TESK_SEED=" << usedSeed() << '\n';
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round) + ", TESK_SEED=" + std::to_string(usedSeed()));
        renew();
        send(random().message(4));
        const std::string message = random().message(3);
        const auto foreseen = forecast(facts(), {{"message", true, policiesOf(message), true, false}});

        send(message);

        EXPECT_EQ(numbersOf(foreseen.mergedAfter), numbersOf(*TeskConsumerPolicyMgr::getInstance()->getStrongPolicy()));
        EXPECT_EQ(foreseen.settingsAfter, facts().settings);
        EXPECT_EQ(applications(foreseen), launched());
    }
}

TEST_F(Agreement, ExplanationIsWhatTheServiceDid) {
    std::cout << "TESK_SEED=" << usedSeed() << '\n';
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round) + ", TESK_SEED=" + std::to_string(usedSeed()));
        renew();
        send(random().message(5));

        const auto explanation = explain(facts());

        const auto strong = TeskConsumerPolicyMgr::getInstance()->getStrongPolicy();
        for (const auto& field : explanation.fields) {
            const auto* const row =
                std::find_if(TeskPolicyTable::numbers.begin(), TeskPolicyTable::numbers.end(),
                             [&field](const TeskPolicyNumber& number) { return number.column == field.field; });
            EXPECT_EQ(field.merged, (*strong).*row->field) << field.field;
        }
        for (std::size_t setting = 0; !explanation.accounts.empty() && setting < deviceSettings.size(); ++setting) {
            EXPECT_EQ(explanation.written[setting].value_or(0), explanation.now[setting])
                << deviceSettings[setting].name;
        }
        if (!launched().empty() && launched().back() == "com.velmor.tesk-popup") {
            EXPECT_EQ(explanation.enforcingAccount, enforcingAccount());
        }
    }
}

} // namespace
} // namespace deskwatch
