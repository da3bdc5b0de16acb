#include <app_preference.h>

#include "TeskConsumerPreferenceProxy.h"
#include "unit_test.h"

namespace {

constexpr char enforceKey[] = "pref/tesk-agent/pwd_enforce_account_id";

class PreferenceProxyTest : public UnitTest {
protected:
    void setEach() {
        proxy.set<int>("int", -4);
        proxy.set<bool>("bool", false);
        proxy.set<double>("double", 1.5);
        proxy.set<const char*>("text", "value");
        proxy.set("text", "another");
    }

    TeskConsumerPreferenceProxy proxy;
};

TEST_F(PreferenceProxyTest, ValuesOfEveryTypeAreKept) {
    setEach();

    EXPECT_EQ(proxy.get<int>("int"), -4);
    EXPECT_FALSE(proxy.get<bool>("bool"));
    EXPECT_EQ(proxy.get<double>("double"), 1.5);
    EXPECT_EQ(proxy.get<std::string>("text"), "another");
    EXPECT_EQ(journal.logs(), Lines{});
    EXPECT_EQ(journal.calls({"preference_set"}),
              (Lines{"preference_set_int int -4", "preference_set_boolean bool 0", "preference_set_double double 1.5",
                     "preference_set_string text value", "preference_set_string text another"}));
}

TEST_F(PreferenceProxyTest, RefusedWritesAreLogged) {
    for (const auto* call :
         {"preference_set_int", "preference_set_boolean", "preference_set_double", "preference_set_string"}) {
        platform.faults.always(call, PREFERENCE_ERROR_IO_ERROR);
    }

    setEach();

    EXPECT_EQ(journal.logs(), (Lines{"W preference_set_int failed: [-5]", "W preference_set_boolean failed: [-5]",
                                     "W preference_set_double failed: [-5]", "W preference_set_string failed: [-5]",
                                     "W preference_set_string failed: [-5]"}));
}

TEST_F(PreferenceProxyTest, MissingValuesReadAsTheirFallbacks) {
    EXPECT_EQ(proxy.get<int>("int"), 0);
    EXPECT_TRUE(proxy.get<bool>("bool"));
    EXPECT_EQ(proxy.get<double>("double"), 0.0);
    EXPECT_EQ(proxy.get<std::string>("text"), "");

    EXPECT_EQ(journal.logs(),
              (Lines{"W preference_get_int failed: [-17825744]", "W preference_get_boolean failed: [-17825744]",
                     "W preference_get_double failed: [-17825744]", "W preference_get_string failed: [-17825744]"}));
}

TEST_F(PreferenceProxyTest, ValueThatAFailedGetterLeavesBehindIsNotTaken) {
    proxy.set("number", "a text");
    proxy.set<int>("flag", 7);

    EXPECT_EQ(proxy.get<int>("number"), 0);
    EXPECT_EQ(proxy.get<double>("number"), 0.0);
    EXPECT_TRUE(proxy.get<bool>("flag"));
}

TEST_F(PreferenceProxyTest, UnknownExistenceCountsAsAbsence) {
    proxy.set<int>("int", 0);
    EXPECT_TRUE(proxy.exist("int"));
    EXPECT_FALSE(proxy.exist("other"));
    EXPECT_EQ(journal.logs(), Lines{});

    platform.faults.always("preference_is_existing", PREFERENCE_ERROR_IO_ERROR);
    EXPECT_FALSE(proxy.exist("int"));
    EXPECT_EQ(journal.logs(), Lines{"W preference_is_existing failed: [-5]"});
}

TEST_F(PreferenceProxyTest, OnlyTheFirstInitGivesTheAccountItsFirstValue) {
    TeskConsumerPreferenceProxy::init();

    EXPECT_EQ(std::get<int>(platform.preferences.at(enforceKey)), 0);
    EXPECT_EQ(journal.logsOf("init"), (Lines{"I Enter", "I Leave"}));

    platform.preferences[enforceKey] = 7;
    TeskConsumerPreferenceProxy::init();
    EXPECT_EQ(TeskConsumerPreferenceProxy::getPwdEnforcingAccountId(), 7);
}

TEST_F(PreferenceProxyTest, EnforcingAccountIsKept) {
    EXPECT_EQ(TeskConsumerPreferenceProxy::setPwdEnforcingAccountId(12), 0);
    EXPECT_EQ(TeskConsumerPreferenceProxy::getPwdEnforcingAccountId(), 12);
    EXPECT_EQ(std::get<int>(platform.preferences.at(enforceKey)), 12);
    EXPECT_EQ(journal.logs(), Lines{});
}

TEST_F(PreferenceProxyTest, EnforcingAccountThatCannotBeSetOrReadIsAnError) {
    platform.faults.always("preference_set_int", PREFERENCE_ERROR_IO_ERROR);

    EXPECT_EQ(TeskConsumerPreferenceProxy::setPwdEnforcingAccountId(12), -1);
    EXPECT_EQ(TeskConsumerPreferenceProxy::getPwdEnforcingAccountId(), -1);
    EXPECT_EQ(journal.logs(),
              (Lines{"E Failed to set enforce account id.", "E Failed to get enforce account id. ret : -1"}));
}

} // namespace
