#include <gtest/gtest.h>
#include <message_port.h>

#include <fstream>
#include <functional>
#include <iostream>

#include "device_state.h"
#include "file_bytes.h"
#include "messages.h"
#include "other_program.h"
#include "test_device.h"

namespace system_test {
namespace {

namespace fs = std::filesystem;

/// Something in the database's place that is no store of policies, and what the log says of it. The tests of the
/// database class hold more of them.
struct Damage {
    const char* name;
    std::function<void(const fs::path& database)> inflict;
    const char* complaint;
};

void PrintTo(const Damage& damage, std::ostream* output) {
    *output << damage.name;
}

std::vector<Damage> damages() {
    return {
        {"NotOpened",
         [](const fs::path& database) {
             fs::remove(database);
             fs::create_directory(database);
         },
         "sqlite3_open failed: [14]"},
        {"NotRead", [](const fs::path& database) { writeBytes(database, std::string(5000, 'x')); },
         "file is not a database"},
        {"NotWritten",
         [](const fs::path& database) {
             OtherProgram(database).run("alter table eas_policy_tbl rename to accounts;"
                                        "create view eas_policy_tbl as select * from accounts");
         },
         "cannot modify eas_policy_tbl because it is a view"},
    };
}

std::string contentOf(const fs::path& database) {
    return fs::is_directory(database) ? "directory" : bytesOf(database);
}

/// A watch whose service has stored accounts and has ended.
void storeAndEnd(const TestDevice& device, const std::vector<PolicyAccount>& accounts) {
    device.launchService();
    device.send("req_update_policy", policyUpdate(accounts));
    device.endService();
}

class DamagedStore : public testing::TestWithParam<Damage> {};

TEST_P(DamagedStore, IsReportedAndKeptWhileTheServiceGoesOn) {
    const TestDevice device;
    storeAndEnd(device, {alice(hardenedPolicy), bob(pinPolicy)});
    GetParam().inflict(device.database());
    const auto before = contentOf(device.database());

    device.launchService();
    const auto service = device.servicePid();
    device.send("req_update_policy", initResponse({carol(pinPolicy)}));
    device.send("req_delete_account", "3");
    setKey(keys::passwordApplied, 1); // encryption is asked for only after it
    device.send("chk_device_encryption_policy", "");

    EXPECT_GE(device.log().count(GetParam().complaint), 1);
    EXPECT_EQ(device.companions().launches(ids::encryptionPopup).size(), 1U) << "it does not answer any more";
    EXPECT_EQ(device.servicePid(), service);
    EXPECT_TRUE(contentOf(device.database()) == before) << "it has been changed";
}

INSTANTIATE_TEST_SUITE_P(, DamagedStore, testing::ValuesIn(damages()),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(HostileStore, NameThatIsNotUtf8ReachesThePopupUnchanged) {
    const TestDevice device;
    storeAndEnd(device, {alice(hardenedPolicy)});
    OtherProgram(device.database()).run("update eas_policy_tbl set account_name=cast(x'fffe41' as text)");

    device.launchService();
    device.send("chk_password_policy", "");

    EXPECT_EQ(settings(), hardenedSettings);
    EXPECT_EQ(device.companions().launches(ids::popup).back().extraData.at("ACCOUNT_NAME"), "\xff\xfe"
                                                                                            "A");
    device.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    EXPECT_EQ(device.companions().launches(ids::popup).back().extraData.at("ACCOUNT_NAME"), "alice@contoso.example");
}

TEST(HostileStore, UpdateWaitsForALockThatIsReleasedInTime) {
    const TestDevice device;
    device.launchService();
    OtherProgram other(device.database());
    other.run("begin immediate");
    ASSERT_EQ(sendMessage({{"req", "req_update_policy"}, {"msg", policyUpdate({alice(pinPolicy)})}}),
              MESSAGE_PORT_ERROR_NONE);
    device.waitForLog("busy handler called! count - 1");

    other.run("rollback");

    device.companions().settle(ids::service);
    EXPECT_EQ(device.log().count("sqlite busy error!"), 0);
    EXPECT_EQ(storedAccounts(device.database()), std::vector<std::string>{"1"});
}

/// What the service may take for 100,000 accounts, in KB.
#ifdef TESK_SANITIZED
constexpr long mostMemory = 800'000; // the sanitizer keeps for a while what has been released
#else
constexpr long mostMemory = 100'000;
#endif

/// The most memory that a process has had so far, in KB.
long peakMemoryOf(pid_t process) {
    const std::string figure = "VmHWM:";
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.rfind(figure, 0) == 0) {
            return std::stol(line.substr(figure.size()));
        }
    }
    ADD_FAILURE() << "no " << figure;
    return 0;
}

TEST(HostileStore, HundredThousandAccountsAreServedInBoundedMemory) {
    const TestDevice device;
    storeAndEnd(device, {alice(defaultPolicy)});
    OtherProgram(device.database())
        .run(
            "begin; with recursive n(i) as (select 2 union all select i+1 from n where i<100000)"
            " insert into eas_policy_tbl select i, 1, 1, 0, 0, 4+(i=70000), 0, 0, 1, 0, 0, 0, 0, 2, 1, 1, 1, 1, 1, 1, "
            "1, 1, 'account' || i || '@contoso.example', 'Account', null, null, null, null, null, null from n; commit");

    device.launchService();
    EXPECT_EQ(settings().minLength, 5);
    device.send("req_update_policy", policyUpdate({alice(strictestPolicy)}));
    EXPECT_EQ(settings().minLength, 16);
    device.send("req_delete_account", "1");
    EXPECT_EQ(settings().minLength, 5);

    const long peak = peakMemoryOf(device.servicePid());
    std::cout << "100,000 accounts: " << peak << " KB at most\n";
    EXPECT_LT(peak, mostMemory);
    EXPECT_EQ(storedAccounts(device.database()).size(), 99'999U);
}

} // namespace
} // namespace system_test
