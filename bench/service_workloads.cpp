#include <fstream>
#include <sstream>
#include <stdexcept>

#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerPolicyMgr.h"
#include "data_folder.h"
#include "null_platform.h"
#include "rules/TeskPasswordDecision.h"
#include "workload.h"

namespace {

constexpr int minLength = 4;
constexpr int passwordLock = 2;

/// The service's database in a temporary folder, with that many accounts.
class ServiceWorkload : public bench::Workload {
public:
    explicit ServiceWorkload(int accounts) {
        folder_.fill(accounts);
        bench::setDataPath(folder_.path());
        TeskConsumerIpcMgr::getInstance()->init();
    }

private:
    bench::DataFolder folder_;
};

class Update : public ServiceWorkload {
public:
    explicit Update(int accounts) : ServiceWorkload(accounts) {}
    void run() override { bench::deliver("req_update_policy", message_); }

private:
    std::string message_ = bench::updateMessage();
};

class Merge : public ServiceWorkload {
public:
    explicit Merge(int accounts) : ServiceWorkload(accounts) {}
    void run() override { strongest_ = TeskConsumerPolicyMgr::getInstance()->getStrongPolicy(); }

private:
    std::shared_ptr<TeskPolicyData> strongest_;
};

class Decide : public bench::Workload {
public:
    void run() override {
        const volatile int lock = passwordLock;
        const auto required = TeskPasswordDecision::required(policy_, minLength);
        verdict_ = TeskPasswordDecision::compareRules(current_, required, policy_.allowSimplePassword != 0);
        if (verdict_ == TeskPasswordVerdict::Satisfied) {
            verdict_ = TeskPasswordDecision::compareLock(required.quality, lock);
        }
    }

private:
    static TeskPolicyData passwordPolicy() {
        TeskPolicyData policy;
        policy.devicePasswordEnabled = 1;
        policy.minDevicePasswordLength = minLength;
        return policy;
    }

    TeskPolicyData policy_ = passwordPolicy();
    TeskPasswordRules current_ = TeskPasswordDecision::required(policy_, minLength);
    volatile TeskPasswordVerdict verdict_ = TeskPasswordVerdict::Satisfied;
};

} // namespace

std::unique_ptr<bench::Workload> bench::makeServiceWorkload(const std::string& name, int accounts) {
    if (name == "update") {
        return std::make_unique<Update>(accounts);
    }
    if (name == "merge") {
        return std::make_unique<Merge>(accounts);
    }
    if (name == "decide") {
        return std::make_unique<Decide>();
    }
    throw std::runtime_error("bench: no such work: " + name);
}

std::string bench::updateMessage() {
    const std::ifstream file(BENCH_MESSAGE_FILE);
    std::ostringstream text;
    text << file.rdbuf();
    if (text.str().empty()) {
        throw std::runtime_error("bench: cannot read " BENCH_MESSAGE_FILE);
    }
    return text.str();
}
