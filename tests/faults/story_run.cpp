#include "story_run.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>

#include "TeskConsumerDbMgr.h"
#include "sample_policies.h"
#include "system_calls_of_sqlite.h"

/// The service's main, which the build gives this name.
int teskMain(int argc, char** argv);

namespace {

using fake::FakePlatform;

/// Stricter than the accounts of all stories in every field, so that it decides every rule of the device.
constexpr char strictPolicy[] =
    R"({"PasswordMode":64,"allowCamera":false,"allowBluetoothMode":false,"allowBrowser":false,)"
    R"("allowDesktopSync":false,"allowInternetSharing":false,"allowPOPIMAPEmail":false,"allowSimplePassword":false,)"
    R"("allowStorageCard":false,"allowTextMessaging":false,"allowWifi":false,"devicePasswordEnabled":true,)"
    R"("devicePasswordExpiration":1,"devicePasswordHistory":1,"minDevicePasswordComplexCharacters":9,)"
    R"("maxDevicePasswordFailedAttempts":1,"maxInactivityTimeDeviceLock":1,"minDevicePasswordLength":64,)"
    R"("passwordRecoveryEnabled":false,"requireDeviceEncryption":true})";

const std::map<std::string, int>& strictDevice() {
    static const std::map<std::string, int> settings{
        {"quality", 128},
        {"minimum_length", 64},
        {"maximum_failed_attempts_for_wipe", 1},
        {"min_complex_chars", 9},
        {"max_inactivity_time_device_lock", 1},
        {"expires", 1},
        {"history", 1},
        {"wifi_state", 0},
        {"messaging_state", 0},
        {"popimap_email_state", 0},
        {"internal_storage_encryption", 1},
    };
    return settings;
}

/// What is wrong after the good request; empty when it is stored, enforced, published and told to the wearer.
std::string flawOfNextRequest(FakePlatform& platform) {
    TeskPolicyData stored;
    if (TeskConsumerDbMgr::getInstance()->getPolicyDataByAccountId(nextAccountId, stored) != 0 ||
        stored.minDevicePasswordLength != 64 || stored.accountName != "alice@contoso.example") {
        return "not stored";
    }
    if (platform.devicePolicy.settings != strictDevice()) {
        return "not enforced";
    }
    if (platform.settings.integer("db/eas/password_policy_applied") != 0 ||
        platform.settings.integer("db/eas/device_encryption_applied") != 0) {
        return "not published";
    }
    const auto& sent = platform.launches.sent;
    if (sent.size() != 2 || sent.at(1).extraData.at(1).second != "alice@contoso.example") {
        return "the wearer is not told";
    }
    return "";
}

std::string sendNextRequest(FakePlatform& platform) {
    if (platform.ports.find("eas-itpolicy-port") == nullptr) {
        return "no port";
    }
    platform.devicePolicy.settings.clear();
    platform.launches.sent.clear();
    platform.settings.setKeyAsDevice("db/ode/crypto_state", "unencrypted");
    platform.ports.deliver("req_update_policy", samples::indication(nextAccountId, strictPolicy));
    platform.deliverPending();
    return flawOfNextRequest(platform);
}

void deleteEveryAccount(FakePlatform& platform) {
    for (const int accountId : {1, 2, 3, nextAccountId, testAccountId}) {
        platform.ports.deliver("req_delete_account", std::to_string(accountId));
    }
    platform.deliverPending();
}

void runService() {
    std::string name = "tesk-agent";
    std::array<char*, 2> arguments{name.data(), nullptr};
    teskMain(1, arguments.data());
}

/// What GLib holds for a programmer's error ends the process, and no bus of the machine is reached.
void prepareProcess() {
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL | G_LOG_LEVEL_WARNING));
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", TRUE);
    leadSystemCallsOfSqlite();
}

/// Plays a story in the service's own process.
class Player {
public:
    Player(const Story& story, const std::vector<Fault>& faults, FakePlatform& platform)
        : story_(story), faults_(faults), platform_(platform) {}

    std::string play() {
        prepareProcess();
        platform_.service.duringMainLoop = [this] { runMainLoop(); };
        if (story_.withStart) {
            begin();
        }
        runService();
        if (!isFinished_) {
            finish();
        }
        return outcome_.toText();
    }

private:
    void runMainLoop() {
        outcome_.isRunning = true;
        if (!story_.withStart) {
            begin();
        }
        if (story_.act) {
            story_.act(platform_);
        }
        platform_.deliverPending();
        if (!story_.withEnd) {
            finish();
            outcome_.nextRequest = sendNextRequest(platform_);
        }
    }

    void begin() {
        platform_.journal.clear();
        platform_.system.steps.clear();
        countsBefore_ = platform_.faults.calls();
        launchesBefore_ = platform_.launches.sent.size();
        for (const auto& fault : faults_) {
            fault.arm(platform_.faults);
        }
    }

    void finish() {
        isFinished_ = true;
        platform_.faults.none();
        outcome_.calls = platform_.journal.calls();
        outcome_.steps = platform_.system.steps;
        outcome_.warnings = platform_.journal.warnings();
        outcome_.leaks = platform_.leaks();
        outcome_.device = platform_.devicePolicy.settings;
        outcome_.isAdministrator = !platform_.devicePolicy.clients.empty();
        for (auto launch = launchesBefore_; launch < platform_.launches.sent.size(); ++launch) {
            outcome_.launches.push_back(platform_.launches.sent.at(launch).appId);
        }
        for (const auto& [function, count] : platform_.faults.calls()) {
            outcome_.counts[function] = count - countsBefore_[function];
        }
    }

    const Story& story_;
    const std::vector<Fault>& faults_;
    FakePlatform& platform_;
    Outcome outcome_;
    bool isFinished_ = false;
    std::map<std::string, int> countsBefore_;
    std::size_t launchesBefore_ = 0;
};

void writeDatabase(const std::string& path, const std::string& content) {
    std::filesystem::create_directory(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary) << content;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

StoryRun::StoryRun(const Story& story, const std::string& databaseContent) : story_(story) {
    prepareWatch(platform_, story);
    if (!databaseContent.empty()) {
        writeDatabase(databasePath(), databaseContent);
    }
}

void StoryRun::play(const std::vector<Fault>& faults) {
    end_ = runInChild([&] { return Player(story_, faults, platform_).play(); });
    if (end_.isFinished()) {
        outcome_ = Outcome::fromText(end_.text);
    }
}

std::string StoryRun::requestAfterRestart() {
    return restart(false);
}

std::string StoryRun::requestAfterLastDeletion() {
    return restart(true);
}

std::string StoryRun::restart(bool afterLastDeletion) {
    if (end_.isFinished() && !outcome_.isAdministrator) {
        platform_.devicePolicy.clients.clear();
    } else if (end_.isFinished()) {
        platform_.devicePolicy.registerService();
    }
    const auto end = runInChild([&] {
        std::string flaw = "no main loop";
        prepareProcess();
        platform_.service.duringMainLoop = [&] {
            if (afterLastDeletion) {
                deleteEveryAccount(platform_);
            }
            flaw = sendNextRequest(platform_);
        };
        runService();
        return flaw;
    });
    return end.isFinished() ? end.text : end.how();
}

std::string databaseOf(const Story& story) {
    if (story.accounts.empty()) {
        return "";
    }
    FakePlatform platform;
    runInChild([&] {
        for (const auto& account : story.accounts) {
            TeskConsumerDbMgr::getInstance()->insertPolicy(account);
        }
        return "";
    });
    return contentOf(platform.dataPath + "dbspace/.tesk.db");
}
