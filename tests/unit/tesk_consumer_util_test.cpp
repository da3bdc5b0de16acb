#include <algorithm>
#include <functional>

#include "TeskConsumerUtil.h"
#include "unit_test.h"

namespace {

using Extras = std::vector<std::pair<std::string, std::string>>;

constexpr char tutorialKey[] = "memory/private/com.velmor.hearth/tutorial_is_in_progress";
constexpr char enforcingKey[] = "pref/tesk-agent/pwd_enforce_account_id";

class UtilTest : public UnitTest {
protected:
    /// The warnings of a launch; the tutorial's unset key and the like stay out of them.
    Lines launchWarnings() const {
        Lines lines;
        for (const auto& line : journal.warnings()) {
            if (line.rfind("W app_control", 0) == 0) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    void setTutorial(int running) { platform.settings.setKeyAsDevice(tutorialKey, running); }

    void expectLaunch(const std::string& appId, const Extras& extraData, bool wantsReply) {
        ASSERT_EQ(platform.launches.sent.size(), 1U);
        EXPECT_EQ(platform.launches.sent[0].appId, appId);
        EXPECT_EQ(platform.launches.sent[0].extraData, extraData);
        EXPECT_EQ(platform.launches.sent[0].wantsReply(), wantsReply);
        EXPECT_EQ(platform.leaks(), Lines{});
        EXPECT_EQ(journal.calls({"app_control"}), stepsOf(appId, extraData));
        const auto all = journal.all();
        EXPECT_EQ(Lines(all.end() - 2, all.end()), (Lines{"app_control_destroy", "I Leave"}));
    }

    /// The calls of a launch, in their order.
    static Lines stepsOf(const std::string& appId, const Extras& extraData) {
        Lines steps{"app_control_create", "app_control_set_app_id " + appId};
        std::string sent = "app_control_send_launch_request " + appId;
        for (const auto& [key, value] : extraData) {
            steps.push_back("app_control_add_extra_data ");
            steps.back().append(key).append(" ").append(value);
            sent.append(" ").append(key).append("=").append(value);
        }
        steps.push_back(sent);
        steps.emplace_back("app_control_destroy");
        return steps;
    }

    /// Makes one platform call after the other fail: each is logged, and the launch answers -1 and leaves nothing open.
    void expectEachFailureIsLogged(const std::function<int()>& launch, int items) {
        expectFailure(launch, "app_control_set_app_id", 1);
        for (int item = 1; item <= items; ++item) {
            expectFailure(launch, "app_control_add_extra_data", item);
        }
        expectFailure(launch, "app_control_send_launch_request", 1);
    }

    void expectFailure(const std::function<int()>& launch, const std::string& function, int nth) {
        SCOPED_TRACE(function + " " + std::to_string(nth));
        platform.faults.atCall(function, nth, -12);
        journal.clear();
        EXPECT_EQ(launch(), -1);
        EXPECT_EQ(launchWarnings(), Lines{"W " + function + "() failed: -12"});
        EXPECT_TRUE(platform.launches.sent.empty());
        EXPECT_EQ(journal.calls().back(), "app_control_destroy");
        EXPECT_EQ(journal.all().back(), "I Leave");
    }

    void expectFailedCreationIsLogged(const std::function<int()>& launch) {
        platform.faults.atCall("app_control_create", 1, -12);
        EXPECT_EQ(launch(), -1);
        platform.faults.atCall("app_control_create", 1, 0);
        EXPECT_EQ(launch(), -1);
        EXPECT_EQ(launchWarnings(), (Lines{"W app_control_create() failed: -12", "W app_control_create() failed: 0"}));
        EXPECT_EQ(journal.all().back(), "W app_control_create() failed: 0");
        EXPECT_TRUE(platform.launches.sent.empty());
    }
};

using TutorialTest = UtilTest;

TEST_F(TutorialTest, IsFinishedWhenItsKeyIsZero) {
    setTutorial(0);
    EXPECT_TRUE(TeskConsumerUtil::getIsTutorialFinished());
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I tutorial is finished: [1]", "I Leave"}));
}

TEST_F(TutorialTest, IsNotFinishedWhileItsKeyIsNotZero) {
    setTutorial(2);
    EXPECT_FALSE(TeskConsumerUtil::getIsTutorialFinished());
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I tutorial is finished: [0]", "I Leave"}));
}

TEST_F(TutorialTest, UnreadableKeyCountsAsFinished) {
    EXPECT_TRUE(TeskConsumerUtil::getIsTutorialFinished());
    EXPECT_EQ(journal.logs(),
              (Lines{"I Enter", "W vconf_get_int failed: [-1]", "I tutorial is finished: [1]", "I Leave"}));
}

using LaunchPopupTest = UtilTest;

TEST_F(LaunchPopupTest, CarriesTheRulesOfTheEnforcingAccount) {
    auto data = passwordAccount(4);
    data.accountName = "alice@contoso.example";
    data.minDevicePasswordLength = 8;
    data.allowSimplePassword = 0;
    data.alphanumericDevicePasswordRequired = 1;
    store({data});
    platform.preferences[enforcingKey] = 4;

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);

    expectLaunch("com.velmor.tesk-popup",
                 {{"OPERATION", "SET_PRIVACY_LOCK"},
                  {"ACCOUNT_NAME", "alice@contoso.example"},
                  {"password_min_length", "8"},
                  {"password_max_length", "16"},
                  {"allow_simple", "0"},
                  {"password_required", "1"}},
                 true);
    EXPECT_EQ(journal.logsOf("launchPopup"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(LaunchPopupTest, AccountAndPolicyAreReadOnTheWay) {
    store({passwordAccount(4)});
    platform.preferences[enforcingKey] = 4;
    auto expected = stepsOf("com.velmor.tesk-popup", {{"OPERATION", "SET_PRIVACY_LOCK"},
                                                      {"ACCOUNT_NAME", ""},
                                                      {"password_min_length", "4"},
                                                      {"password_max_length", "16"},
                                                      {"allow_simple", "1"},
                                                      {"password_required", "0"}});
    const auto insertBefore = [&expected](const std::string& step, const Lines& reads) {
        expected.insert(std::find(expected.begin(), expected.end(), step), reads.begin(), reads.end());
    };
    insertBefore("app_control_create", {std::string("vconf_get_int ") + tutorialKey});
    insertBefore("app_control_add_extra_data ACCOUNT_NAME ",
                 {std::string("preference_get_int ") + enforcingKey,
                  "sqlite3_prepare_v2 select * from eas_policy_tbl where account_id=?;"});
    insertBefore(
        "app_control_add_extra_data password_min_length 4",
        {"dpm_manager_create", "sqlite3_prepare_v2 select * from eas_policy_tbl;", "vconf_get_str db/rgn/country_iso"});

    TeskConsumerUtil::launchPopup();

    EXPECT_EQ(journal.calls(), expected);
}

TEST_F(LaunchPopupTest, UnknownAccountIsCalledEas) {
    platform.preferences[enforcingKey] = 4;

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);
    EXPECT_EQ(platform.launches.sent.at(0).extraData.at(1), (Extras::value_type{"ACCOUNT_NAME", "EAS"}));
}

TEST_F(LaunchPopupTest, UnreadableAccountIdIsCalledEas) {
    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);

    EXPECT_EQ(platform.launches.sent.at(0).extraData.at(1), (Extras::value_type{"ACCOUNT_NAME", "EAS"}));
    const auto errors = journal.logs(DLOG_ERROR);
    EXPECT_EQ(errors, (Lines{"E Failed to get enforce account id. ret : -1", "E accountId is invalid"}));
}

TEST_F(LaunchPopupTest, LengthIsAtLeastTheCountrys) {
    auto data = passwordAccount(4);
    data.minDevicePasswordLength = 4;
    store({data});
    platform.settings.setKeyAsDevice("db/rgn/country_iso", "KR");

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);
    EXPECT_EQ(platform.launches.sent.at(0).extraData.at(2), (Extras::value_type{"password_min_length", "6"}));
}

TEST_F(LaunchPopupTest, LargestLengthFits) {
    auto data = passwordAccount(4);
    data.minDevicePasswordLength = 2147483647;
    store({data});

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);
    EXPECT_EQ(platform.launches.sent.at(0).extraData.at(2), (Extras::value_type{"password_min_length", "2147483647"}));
}

TEST_F(LaunchPopupTest, WithoutAccountsAsksForTheLeastLock) {
    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);

    const auto& extraData = platform.launches.sent.at(0).extraData;
    EXPECT_EQ(extraData.at(2).second, "4");
    EXPECT_EQ(extraData.at(4), (Extras::value_type{"allow_simple", "1"}));
    EXPECT_EQ(extraData.at(5), (Extras::value_type{"password_required", "0"}));
}

TEST_F(LaunchPopupTest, WaitsForTheEndOfTheTutorial) {
    setTutorial(1);

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), -1);
    EXPECT_EQ(journal.warnings(), Lines{"W tutorial is not finished yet"});
    EXPECT_EQ(journal.calls({"app_control"}), Lines{});
    EXPECT_EQ(journal.logsOf("launchPopup"), Lines{"I Enter"});
}

TEST_F(LaunchPopupTest, FailedCreationIsLogged) {
    expectFailedCreationIsLogged(TeskConsumerUtil::launchPopup);
}

TEST_F(LaunchPopupTest, EachFailureIsLogged) {
    expectEachFailureIsLogged(TeskConsumerUtil::launchPopup, 6);
}

using PopupReplyTest = UtilTest;

TEST_F(PopupReplyTest, OkOpensTheLockSettings) {
    TeskConsumerUtil::launchPopup();

    platform.launches.answer(0, "ok");

    ASSERT_EQ(platform.launches.sent.size(), 2U);
    EXPECT_EQ(platform.launches.sent[1].appId, "com.velmor.veilpane-setting");
    EXPECT_EQ(platform.launches.sent[1].extraData, (Extras{{"setting_state", "eas"}}));
    EXPECT_FALSE(platform.launches.sent[1].wantsReply());
    EXPECT_TRUE(platform.ports.sent.empty());
}

TEST_F(PopupReplyTest, SyncOffSendsExactlyOneRequest) {
    TeskConsumerUtil::launchPopup();

    platform.launches.answer(0, "sync_off_ok");

    ASSERT_EQ(platform.ports.sent.size(), 1U);
    EXPECT_EQ(platform.ports.sent[0].appId, "com.velmor.quillon.consumer");
    EXPECT_EQ(platform.ports.sent[0].port, "eas-itpolicy-port");
    EXPECT_EQ(platform.ports.sent[0].entries, (Extras{{"req", "req_disable_password_eas_accounts"}, {"msg", ""}}));
    EXPECT_EQ(platform.launches.sent.size(), 1U);
}

TEST_F(PopupReplyTest, OtherAnswersDoNothing) {
    TeskConsumerUtil::launchPopup();

    for (const auto* result : {"", "OK", "ok ", "sync_off", "cancel"}) {
        platform.launches.answer(0, result);
    }
    platform.launches.answer(0, std::nullopt);

    EXPECT_EQ(platform.launches.sent.size(), 1U);
    EXPECT_TRUE(platform.ports.sent.empty());
}

TEST_F(PopupReplyTest, ClosingThePopupIsAnsweredAlike) {
    TeskConsumerUtil::exitPopup();

    platform.launches.answer(0, "ok");

    EXPECT_EQ(platform.launches.sent.back().appId, "com.velmor.veilpane-setting");
}

using ExitPopupTest = UtilTest;

TEST_F(ExitPopupTest, AsksThePopupToExit) {
    EXPECT_EQ(TeskConsumerUtil::exitPopup(), 0);
    expectLaunch("com.velmor.tesk-popup", {{"OPERATION", "EXIT"}}, true);
    EXPECT_EQ(journal.logs(), Lines{"I Leave"});
    EXPECT_EQ(journal.logsOf("exitPopup"), Lines{"I Leave"});
}

TEST_F(ExitPopupTest, FailedCreationIsLogged) {
    expectFailedCreationIsLogged(TeskConsumerUtil::exitPopup);
}

TEST_F(ExitPopupTest, EachFailureIsLogged) {
    expectEachFailureIsLogged(TeskConsumerUtil::exitPopup, 1);
}

using LaunchOdePopupTest = UtilTest;

TEST_F(LaunchOdePopupTest, AsksForTheEncryption) {
    EXPECT_EQ(TeskConsumerUtil::launchOdePopup(), 0);
    expectLaunch("com.velmor.dialset.encryption", {{"type", "encrypt"}}, false);
    EXPECT_EQ(journal.logsOf("launchOdePopup"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(LaunchOdePopupTest, WaitsForTheEndOfTheTutorial) {
    setTutorial(1);

    EXPECT_EQ(TeskConsumerUtil::launchOdePopup(), -1);
    EXPECT_EQ(journal.warnings(), Lines{"W tutorial is not finished yet"});
    EXPECT_EQ(journal.calls({"app_control"}), Lines{});
    EXPECT_EQ(journal.logsOf("launchOdePopup"), Lines{"I Enter"});
}

TEST_F(LaunchOdePopupTest, FailedCreationIsLogged) {
    expectFailedCreationIsLogged(TeskConsumerUtil::launchOdePopup);
}

TEST_F(LaunchOdePopupTest, EachFailureIsLogged) {
    expectEachFailureIsLogged(TeskConsumerUtil::launchOdePopup, 1);
}

using EnableOdeSettingTest = UtilTest;

TEST_F(EnableOdeSettingTest, EnablesTheEncryptionMenuEvenDuringTheTutorial) {
    setTutorial(1);

    EXPECT_EQ(TeskConsumerUtil::enableOdeSetting(), 0);
    expectLaunch("com.velmor.dialset.service", {{"__OPERATION__", "__ENABLE_ENCRYPTION_MENU__"}}, false);
    EXPECT_EQ(journal.logsOf("enableOdeSetting"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(EnableOdeSettingTest, FailedCreationShowsInTheNextStep) {
    platform.faults.always("app_control_create", -12);

    EXPECT_EQ(TeskConsumerUtil::enableOdeSetting(), -1);
    EXPECT_EQ(journal.warnings(), Lines{"W app_control_set_app_id() failed: -22"});
}

TEST_F(EnableOdeSettingTest, EachFailureIsLogged) {
    expectEachFailureIsLogged(TeskConsumerUtil::enableOdeSetting, 1);
}

using EnforcePasswordTest = UtilTest;

TEST_F(EnforcePasswordTest, OpensTheLockSettings) {
    EXPECT_EQ(TeskConsumerUtil::__enforcePassword(), 0);
    expectLaunch("com.velmor.veilpane-setting", {{"setting_state", "eas"}}, false);
    EXPECT_EQ(journal.logsOf("__enforcePassword"), (Lines{"I Enter", "I Leave"}));
}

TEST_F(EnforcePasswordTest, FailedCreationIsLogged) {
    expectFailedCreationIsLogged(TeskConsumerUtil::__enforcePassword);
}

TEST_F(EnforcePasswordTest, EachFailureIsLogged) {
    expectEachFailureIsLogged(TeskConsumerUtil::__enforcePassword, 1);
}

using LaunchMailTest = UtilTest;

TEST_F(LaunchMailTest, LaunchesTheMailApplication) {
    EXPECT_TRUE(TeskConsumerUtil::launchQuillonConsumer());
    expectLaunch("com.velmor.quillon.consumer", {}, false);
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
}

TEST_F(LaunchMailTest, FailedLaunchIsAnError) {
    platform.faults.always("app_control_send_launch_request", -13);

    EXPECT_FALSE(TeskConsumerUtil::launchQuillonConsumer());
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "E consumer launching fail: [-13]", "I Leave"}));
}

TEST_F(LaunchMailTest, FailedCreationShowsInTheLaunch) {
    platform.faults.always("app_control_create", -12);

    EXPECT_FALSE(TeskConsumerUtil::launchQuillonConsumer());
    EXPECT_EQ(journal.warnings(), Lines{"E consumer launching fail: [-22]"});
}

TEST_F(LaunchMailTest, RefusedIdIsOnlySeenInTheLaunch) {
    platform.faults.always("app_control_set_app_id", -22);

    TeskConsumerUtil::launchQuillonConsumer();

    EXPECT_EQ(journal.calls({"app_control_send"}).size(), 1U);
    EXPECT_EQ(journal.logs(DLOG_WARN).size(), journal.logs(DLOG_ERROR).size());
}

using GetUserIdTest = UtilTest;

TEST_F(GetUserIdTest, KnownUserHasAnId) {
    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), 5001);
}

TEST_F(GetUserIdTest, MissingAndUnknownNamesHaveNone) {
    EXPECT_EQ(TeskConsumerUtil::getUserId(nullptr), -1);
    EXPECT_EQ(TeskConsumerUtil::getUserId("nobody-here"), -1);
    EXPECT_EQ(TeskConsumerUtil::getUserId(""), -1);
}

TEST_F(GetUserIdTest, FailedLookUpHasNone) {
    platform.faults.always("getpwnam_r", 5);

    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), -1);
}

TEST_F(GetUserIdTest, BufferHasTheSystemsSize) {
    platform.system.userEntrySize = 777;

    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), 5001);
    EXPECT_EQ(journal.calls(), Lines{"getpwnam_r owner 777"});
}

TEST_F(GetUserIdTest, BufferOfUnknownSizeHas16384Bytes) {
    platform.system.userEntrySize = -1;

    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), 5001);
    EXPECT_EQ(journal.calls(), Lines{"getpwnam_r owner 16384"});
}

TEST_F(GetUserIdTest, MissingMemoryHasNone) {
    for (const auto* allocation : {"malloc", "operator new", "operator new[]"}) {
        platform.faults.always(allocation);
    }

    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), -1);
    EXPECT_EQ(journal.calls(), Lines{});
}

} // namespace
