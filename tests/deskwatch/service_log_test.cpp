#include "records/service_log.h"

#include <gtest/gtest.h>

#include <fstream>

#include "temporary_folder.h"

namespace deskwatch {
namespace {

class ServiceLogs : public testing::Test {
protected:
    void add(const std::string& text) const { std::ofstream(file_, std::ios::app) << text; }

    ServiceWarnings take() { return log_.take(); }

    /// What a text of the policy manager says about the lock.
    std::string reason(const std::string& text) {
        add("E/TESK_CONSUMER(   12): TeskConsumerPolicyMgr.cpp: __getPasswordEnforceFlag(41) >  " + text + "\n");
        return take().lockReason;
    }

private:
    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "log";
    ServiceLog log_{file_};
};

TEST_F(ServiceLogs, ReasonForALockIsToldInWords) {
    EXPECT_EQ(reason("enforce password by password quality"), "a stronger kind of password is required");
    EXPECT_EQ(reason("enforce password by simple password policy"), "simple passwords are forbidden now");
    EXPECT_EQ(reason("enforce password by password length"), "a longer password is required");
    EXPECT_EQ(reason("enforce password by min complex charater"), "more kinds of characters are required");
    EXPECT_EQ(reason("enforce password. quality : 128, lock type : PIN"), "the watch has no lock");
    EXPECT_EQ(reason("enforce password. quality : 128, lock type : Password"), "the lock is a PIN");
    EXPECT_EQ(reason("something else"), "");
}

TEST_F(ServiceLogs, OnlyNewWarningsAboutPoliciesAreTold) {
    add("W/TESK_CONSUMER(   12): TeskConsumerDbMgr.cpp: __write(9) >  earlier\n");
    take();
    add("I/TESK_CONSUMER(   12): TeskConsumerDbMgr.cpp: __write(9) >  Enter\n"
        "W/TESK_CONSUMER(   12): main.cpp: main(5) >  Hello World!\n"
        "W/TESK_CONSUMER(   12): TeskConsumerKiller.cpp: __stopKiller(79) >  STOP killer!\n"
        "W/TESK_CONSUMER(   12): TeskConsumerPolicyMgr.cpp: f(1) >  Password policy requires stronger password.\n"
        "W/OTHER(   13): a.cpp: f(1) >  another application\n"
        "tesk-host: f answers -1 because it was told to\n"
        "E/TESK_CONSUMER(   12): TeskConsumerDbMgr.cpp: __write(9) >  later: (1) >  x\n");
    EXPECT_EQ(take().others, std::vector<std::string>{"later: (1) >  x"});
}

TEST_F(ServiceLogs, TutorialIsTold) {
    add("W/TESK_CONSUMER(   12): TeskConsumerUtil.cpp: f(1) >  tutorial is not finished yet\n");
    const auto warnings = take();
    EXPECT_TRUE(warnings.isTutorialShown);
    EXPECT_TRUE(warnings.others.empty());
}

} // namespace
} // namespace deskwatch
