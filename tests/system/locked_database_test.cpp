#include <gtest/gtest.h>
#include <message_port.h>
#include <sqlite3.h>

#include <memory>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

/// Another process that holds the service's database: this one.
class DatabaseLock {
public:
    DatabaseLock(const std::filesystem::path& path, const char* kind) {
        EXPECT_EQ(sqlite3_open_v2(path.c_str(), &database_, SQLITE_OPEN_READWRITE, nullptr), SQLITE_OK);
        run(("begin " + std::string(kind)).c_str());
    }
    ~DatabaseLock() { sqlite3_close(database_); }
    DatabaseLock(const DatabaseLock&) = delete;
    DatabaseLock& operator=(const DatabaseLock&) = delete;

    void release() { run("rollback"); }

private:
    void run(const char* statement) {
        EXPECT_EQ(sqlite3_exec(database_, statement, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database_);
    }

    sqlite3* database_ = nullptr;
};

constexpr char writers[] = "immediate"; // keeps others from writing
constexpr char everyone[] = "exclusive";

TEST(LockedDatabase, UpdateIsGivenUpAndTheNextOneWorksOnceItIsUnlocked) {
    const TestDevice device;
    device.launchService();
    const auto service = device.servicePid();
    DatabaseLock lock(device.database(), writers);

    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));

    for (const char* call : {"1", "2", "3", "4", "5"}) {
        EXPECT_EQ(device.log().count(std::string("busy handler called! count - ") + call), 1);
    }
    EXPECT_EQ(device.log().count("sqlite busy error!"), 1);
    EXPECT_EQ(device.log().count("db failure: database is locked"), 1);
    EXPECT_EQ(device.log().count("_db_insert_policy_data failed: -1001"), 1);
    EXPECT_EQ(device.servicePid(), service);
    lock.release();
    device.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
    EXPECT_EQ(device.servicePid(), service);
}

TEST(LockedDatabase, UpdateWaitsForALockThatIsReleasedInTime) {
    const TestDevice device;
    device.launchService();
    DatabaseLock lock(device.database(), writers);
    ASSERT_EQ(sendMessage({{"req", "req_update_policy"}, {"msg", policyUpdate({alice(pinPolicy)})}}),
              MESSAGE_PORT_ERROR_NONE);
    device.waitForLog("busy handler called! count - 1");

    lock.release();

    device.companions().settle(ids::service);
    EXPECT_EQ(device.log().count("sqlite busy error!"), 0);
    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
}

TEST(LockedDatabase, PopupAsksForAnUnknownAccountWhileNobodyCanRead) {
    const TestDevice device;
    device.launchService();
    device.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));
    DatabaseLock lock(device.database(), everyone);

    device.send("chk_password_policy", "");

    const auto launches = device.companions().launches(ids::popup);
    ASSERT_EQ(launches.size(), 2U);
    EXPECT_EQ(launches.at(0).extraData.at("ACCOUNT_NAME"), "alice@contoso.example");
    EXPECT_EQ(launches.at(1).extraData.at("ACCOUNT_NAME"), "EAS");
}

} // namespace
} // namespace system_test
