#include <app_control.h>

#include <algorithm>
#include <cerrno>
#include <limits>

#include "TeskConsumerUtil.h"
#include "unit_test.h"

namespace {

using Extras = std::vector<std::pair<std::string, std::string>>;

constexpr char tutorialKey[] = "memory/private/com.velmor.hearth/tutorial_is_in_progress";
constexpr char enforcingKey[] = "pref/tesk-agent/pwd_enforce_account_id";

class UtilTest : public UnitTest {
protected:
    void setTutorial(int running) { platform.settings.setKeyAsDevice(tutorialKey, running); }

    /// The text of an item of the first request that was sent.
    std::string sentItem(const std::string& key) const {
        for (const auto& [itemKey, value] : platform.launches.sent.at(0).extraData) {
            if (itemKey == key) {
                return value;
            }
        }
        return "no " + key;
    }
};

using TutorialTest = UtilTest;

TEST_F(TutorialTest, IsFinishedWhenItsKeyIsZero) {
    setTutorial(2);
    EXPECT_FALSE(TeskConsumerUtil::getIsTutorialFinished());
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I tutorial is finished: [0]", "I Leave"}));

    setTutorial(0);
    EXPECT_TRUE(TeskConsumerUtil::getIsTutorialFinished());
}

TEST_F(TutorialTest, UnreadableKeyCountsAsFinished) {
    EXPECT_TRUE(TeskConsumerUtil::getIsTutorialFinished());
    EXPECT_EQ(journal.logs(),
              (Lines{"I Enter", "W vconf_get_int failed: [-1]", "I tutorial is finished: [1]", "I Leave"}));
}

/// A launch: the request that it sends, whether it waits for an answer and for the end of the tutorial, and what it
/// logs when no request can be created.
struct LaunchKind {
    const char* name;
    int (*run)();
    std::string request;
    int items;
    bool wantsReply;
    bool waitsForTutorial;
    const char* failedCreation;
};

constexpr char notCreated[] = "W app_control_create() failed: -12";

const std::vector<LaunchKind>& launchKinds() {
    static const std::vector<LaunchKind> all{
        {"launchPopup", TeskConsumerUtil::launchPopup,
         "com.velmor.tesk-popup OPERATION=SET_PRIVACY_LOCK ACCOUNT_NAME=EAS password_min_length=4 "
         "password_max_length=16 allow_simple=1 password_required=0",
         6, true, true, notCreated},
        {"exitPopup", TeskConsumerUtil::exitPopup, "com.velmor.tesk-popup OPERATION=EXIT", 1, true, false, notCreated},
        {"launchOdePopup", TeskConsumerUtil::launchOdePopup, "com.velmor.dialset.encryption type=encrypt", 1, false,
         true, notCreated},
        {"enableOdeSetting", TeskConsumerUtil::enableOdeSetting,
         "com.velmor.dialset.service __OPERATION__=__ENABLE_ENCRYPTION_MENU__", 1, false, false,
         "W app_control_set_app_id() failed: -22"},
        {"__enforcePassword", TeskConsumerUtil::__enforcePassword, "com.velmor.veilpane-setting setting_state=eas", 1,
         false, false, notCreated},
    };
    return all;
}

class LaunchTest : public UtilTest, public ::testing::WithParamInterface<LaunchKind> {
protected:
    /// The warnings of a launch; the unset keys that it reads stay out of them.
    Lines launchWarnings() const {
        auto lines = journal.warnings();
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const auto& line) { return line.rfind("W app_control", 0) != 0; }),
                    lines.end());
        return lines;
    }

    /// What the launch logs of itself; the closing of the popup has always begun without a word.
    static Lines traces() {
        return GetParam().name == std::string("exitPopup") ? Lines{"I Leave"} : Lines{"I Enter", "I Leave"};
    }

    void expectFailure(const std::string& function, int nth) {
        SCOPED_TRACE(function + " " + std::to_string(nth));
        platform.faults.atCall(function, nth, APP_CONTROL_ERROR_OUT_OF_MEMORY);
        journal.clear();
        EXPECT_EQ(GetParam().run(), -1);
        EXPECT_EQ(launchWarnings(), Lines{"W " + function + "() failed: -12"});
        EXPECT_TRUE(platform.launches.sent.empty());
        EXPECT_EQ(journal.calls().back(), "app_control_destroy");
        EXPECT_EQ(journal.all().back(), "I Leave");
    }
};

TEST_P(LaunchTest, SendsItsItemsAndReleasesTheRequest) {
    EXPECT_EQ(GetParam().run(), 0);

    EXPECT_EQ(launchWarnings(), Lines{});
    EXPECT_EQ(journal.calls({"app_control_send"}), Lines{"app_control_send_launch_request " + GetParam().request});
    ASSERT_EQ(platform.launches.sent.size(), 1U);
    EXPECT_EQ(platform.launches.sent[0].wantsReply(), GetParam().wantsReply);
    EXPECT_EQ(journal.logsOf(GetParam().name), traces());
    const auto all = journal.all();
    EXPECT_EQ(Lines(all.end() - 2, all.end()), (Lines{"app_control_destroy", "I Leave"}));
}

TEST_P(LaunchTest, WaitsForTheEndOfTheTutorialOrDoesNotCare) {
    setTutorial(1);
    const bool waits = GetParam().waitsForTutorial;

    EXPECT_EQ(GetParam().run(), waits ? -1 : 0);
    EXPECT_EQ(journal.calls({"app_control"}).empty(), waits);
    const Lines waiting{"I Enter", "W tutorial is not finished yet"};
    EXPECT_EQ(journal.logsOf(GetParam().name), waits ? waiting : traces());
}

TEST_P(LaunchTest, FailedCreationIsLogged) {
    platform.faults.always("app_control_create", APP_CONTROL_ERROR_OUT_OF_MEMORY);

    EXPECT_EQ(GetParam().run(), -1);
    EXPECT_EQ(launchWarnings(), Lines{GetParam().failedCreation});
    EXPECT_TRUE(platform.launches.sent.empty());
}

TEST_P(LaunchTest, EachFailureIsLoggedAndLeavesNothingOpen) {
    expectFailure("app_control_set_app_id", 1);
    for (int item = 1; item <= GetParam().items; ++item) {
        expectFailure("app_control_add_extra_data", item);
    }
    expectFailure("app_control_send_launch_request", 1);
}

INSTANTIATE_TEST_SUITE_P(, LaunchTest, ::testing::ValuesIn(launchKinds()), [](const auto& row) {
    const std::string name = row.param.name;
    return name.substr(name.find_first_not_of('_'));
});

using LaunchPopupTest = UtilTest;

TEST_F(LaunchPopupTest, CarriesTheRulesOfTheEnforcingAccount) {
    auto data = passwordAccount(4);
    data.accountName = "alice@contoso.example";
    data.minDevicePasswordLength = std::numeric_limits<int>::max();
    data.allowSimplePassword = 0;
    data.alphanumericDevicePasswordRequired = 1;
    store({data});
    platform.preferences[enforcingKey] = 4;

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);

    EXPECT_EQ(sentItem("ACCOUNT_NAME"), "alice@contoso.example");
    EXPECT_EQ(sentItem("password_min_length"), "2147483647");
    EXPECT_EQ(sentItem("allow_simple"), "0");
    EXPECT_EQ(sentItem("password_required"), "1");
}

TEST_F(LaunchPopupTest, AccountWithoutANameIsCalledEas) {
    store({passwordAccount(4)});
    platform.preferences[enforcingKey] = 4;

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);

    EXPECT_EQ(sentItem("ACCOUNT_NAME"), "EAS");
}

TEST_F(LaunchPopupTest, AccountAndPolicyAreReadOnTheWay) {
    auto data = passwordAccount(4);
    data.accountName = "alice";
    store({data});
    platform.preferences[enforcingKey] = 4;

    const std::string request =
        "app_control_send_launch_request com.velmor.tesk-popup OPERATION=SET_PRIVACY_LOCK ACCOUNT_NAME=alice "
        "password_min_length=4 password_max_length=16 allow_simple=1 password_required=0";

    TeskConsumerUtil::launchPopup();

    EXPECT_EQ(
        journal.calls(),
        (Lines{std::string("vconf_get_int ") + tutorialKey, "app_control_create",
               "app_control_set_app_id com.velmor.tesk-popup", "app_control_add_extra_data OPERATION SET_PRIVACY_LOCK",
               std::string("preference_get_int ") + enforcingKey,
               "sqlite3_prepare_v2 select * from eas_policy_tbl where account_id=?;",
               "app_control_add_extra_data ACCOUNT_NAME alice", "dpm_manager_create",
               "sqlite3_prepare_v2 select * from eas_policy_tbl;", "vconf_get_str db/rgn/country_iso",
               "app_control_add_extra_data password_min_length 4", "app_control_add_extra_data password_max_length 16",
               "app_control_add_extra_data allow_simple 1", "app_control_add_extra_data password_required 0", request,
               "app_control_destroy"}));
}

TEST_F(LaunchPopupTest, UnknownAccountIsCalledEas) {
    platform.preferences[enforcingKey] = 4;

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);
    EXPECT_EQ(sentItem("ACCOUNT_NAME"), "EAS");
    EXPECT_EQ(journal.logs(DLOG_ERROR), Lines{});
}

TEST_F(LaunchPopupTest, LengthIsAtLeastTheCountrys) {
    store({passwordAccount(4)});
    platform.settings.setKeyAsDevice("db/rgn/country_iso", "KR");

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), 0);
    EXPECT_EQ(sentItem("password_min_length"), "6");
}

TEST_F(LaunchPopupTest, CreationWithoutARequestIsLoggedWithItsCode) {
    platform.faults.always("app_control_create", APP_CONTROL_ERROR_NONE);

    EXPECT_EQ(TeskConsumerUtil::launchPopup(), -1);
    EXPECT_EQ(journal.all().back(), "W app_control_create() failed: 0");
}

using PopupReplyTest = UtilTest;

TEST_F(PopupReplyTest, OkOpensTheLockSettings) {
    TeskConsumerUtil::launchPopup();

    platform.launches.answer(0, "ok");

    ASSERT_EQ(platform.launches.sent.size(), 2U);
    EXPECT_EQ(platform.launches.sent[1].appId, "com.velmor.veilpane-setting");
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

using LaunchMailTest = UtilTest;

TEST_F(LaunchMailTest, LaunchesTheMailApplication) {
    EXPECT_TRUE(TeskConsumerUtil::launchQuillonConsumer());
    EXPECT_EQ(journal.calls(),
              (Lines{"app_control_create", "app_control_set_app_id com.velmor.quillon.consumer",
                     "app_control_send_launch_request com.velmor.quillon.consumer", "app_control_destroy"}));
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "I Leave"}));
    EXPECT_FALSE(platform.launches.sent[0].wantsReply());
}

TEST_F(LaunchMailTest, FailedLaunchIsAnError) {
    platform.faults.always("app_control_send_launch_request", APP_CONTROL_ERROR_PERMISSION_DENIED);

    EXPECT_FALSE(TeskConsumerUtil::launchQuillonConsumer());
    EXPECT_EQ(journal.logs(), (Lines{"I Enter", "E consumer launching fail: [-13]", "I Leave"}));
}

TEST_F(LaunchMailTest, EarlierFailuresShowInTheLaunchOnly) {
    platform.faults.always("app_control_create", APP_CONTROL_ERROR_OUT_OF_MEMORY);

    EXPECT_FALSE(TeskConsumerUtil::launchQuillonConsumer());
    EXPECT_EQ(journal.calls({"app_control_send"}).size(), 1U);
    EXPECT_EQ(journal.warnings(), Lines{"E consumer launching fail: [-22]"});
}

using GetUserIdTest = UtilTest;

TEST_F(GetUserIdTest, OnlyAKnownUserHasAnId) {
    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), 5001);
    EXPECT_EQ(TeskConsumerUtil::getUserId(nullptr), -1);
    EXPECT_EQ(TeskConsumerUtil::getUserId("nobody-here"), -1);
}

TEST_F(GetUserIdTest, FailedLookUpHasNone) {
    platform.faults.always("getpwnam_r", EIO);

    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), -1);
}

TEST_F(GetUserIdTest, InterruptedLookUpIsMadeAgain) {
    platform.faults.atCall("getpwnam_r", 1, EINTR);

    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), 5001);
}

TEST_F(GetUserIdTest, LongEntryIsReadWithALargerBufferUpToOneMebibyte) {
    platform.system.userEntrySize = 1024;
    platform.faults.atCall("getpwnam_r", 1, ERANGE);
    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), 5001);
    EXPECT_EQ(journal.calls(), (Lines{"getpwnam_r owner 1024", "getpwnam_r owner 2048"}));

    platform.faults.always("getpwnam_r", ERANGE);
    journal.clear();
    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), -1);
    EXPECT_EQ(journal.calls().back(), "getpwnam_r owner 1048576");
}

TEST_F(GetUserIdTest, BufferHasTheSystemsSizeOr16384Bytes) {
    platform.system.userEntrySize = 777;
    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), 5001);

    platform.system.userEntrySize = -1;
    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), 5001);

    EXPECT_EQ(journal.calls(), (Lines{"getpwnam_r owner 777", "getpwnam_r owner 16384"}));
}

TEST_F(GetUserIdTest, MissingMemoryHasNone) {
    for (const auto* allocation : {"malloc", "operator new", "operator new[]"}) {
        platform.faults.always(allocation);
    }

    EXPECT_EQ(TeskConsumerUtil::getUserId("owner"), -1);
    EXPECT_EQ(journal.calls(), Lines{});
}

} // namespace
