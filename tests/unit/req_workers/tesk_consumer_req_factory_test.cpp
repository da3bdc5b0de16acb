#include "req_workers/TeskConsumerCheckOdeWorker.h"
#include "req_workers/TeskConsumerCheckPasswordWorker.h"
#include "req_workers/TeskConsumerDeleteAccountWorker.h"
#include "req_workers/TeskConsumerPolicyWorker.h"
#include "req_workers/TeskConsumerReqFactory.h"
#include "unit_test.h"

namespace {

using ReqFactoryTest = UnitTest;

template <typename Worker>
bool isWorkerOf(const char* request) {
    return std::dynamic_pointer_cast<Worker>(TeskConsumerReqFactory::getWorker(request)) != nullptr;
}

TEST_F(ReqFactoryTest, EachRequestHasItsWorker) {
    EXPECT_TRUE(isWorkerOf<TeskConsumerPolicyWorker>("req_update_policy"));
    EXPECT_EQ(journal.logsOf("getWorker"), (Lines{"I Enter", "I Leave"}));
    EXPECT_TRUE(isWorkerOf<TeskConsumerDeleteAccountWorker>("req_delete_account"));
    EXPECT_TRUE(isWorkerOf<TeskConsumerCheckPasswordWorker>("chk_password_policy"));
    EXPECT_TRUE(isWorkerOf<TeskConsumerCheckOdeWorker>("chk_device_encryption_policy"));
    EXPECT_EQ(journal.warnings(), Lines{});
}

TEST_F(ReqFactoryTest, NamesAreMatchedExactly) {
    for (const auto* name : {"Req_update_policy", "req_update_policy ", " req_update_policy", "req_update", ""}) {
        journal.clear();
        EXPECT_EQ(TeskConsumerReqFactory::getWorker(name), nullptr);
        EXPECT_EQ(journal.logs(), (Lines{"I Enter", std::string("E Unsupported request : ") + name, "I Leave"}));
    }
}

} // namespace
