#include "service_run.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

#include "TeskConsumer.h"
#include "TeskConsumerDbMgr.h"
#include "rules/TeskPolicyTable.h"

namespace kill_points {

namespace {

/// Makes the service's data folder. The fake's own files go below the folder too, since a killed run leaves them.
std::filesystem::path settleBelow(const std::filesystem::path& folder) {
    setenv("TMPDIR", folder.c_str(), 1);
    // Whatever the service does on a bus must not reach the machine's.
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/bus", 1);
    auto data = folder / "data";
    std::filesystem::create_directory(data);
    return data;
}

std::string textOf(const TeskPolicyData& data) {
    std::string text;
    for (const auto& number : TeskPolicyTable::numbers) {
        text += std::to_string(data.*number.field) + " ";
    }
    return text + data.accountName + " " + data.displayName + "\n";
}

} // namespace

std::filesystem::path ServiceRun::database(const std::filesystem::path& folder) {
    return folder / "data" / "dbspace" / ".tesk.db";
}

ServiceRun::ServiceRun(const std::filesystem::path& folder) : data_(settleBelow(folder)) {
    platform_.dataPath = data_.string() + "/";
    platform_.settings.setKeyAsDevice("db/ode/crypto_state", "unencrypted");
    platform_.settings.setKeyAsDevice("db/rgn/country_iso", "GB");
    platform_.settings.setKeyAsDevice("db/setting/lock_type", 0);
    platform_.settings.deliverChanges();
    // a device remembers its administrators, and a run may have been killed behind its registration
    platform_.devicePolicy.registerService();
}

void ServiceRun::run(const std::function<void()>& script) {
    platform_.service.duringMainLoop = script;
    std::string name = "tesk-agent";
    std::array<char*, 2> arguments{name.data(), nullptr};
    auto* const consumer = TeskConsumer::getInstance();
    consumer->init();
    EXPECT_EQ(consumer->start(1, arguments.data()), 0);
}

void ServiceRun::send(const Request& request) {
    platform_.journal.clear();
    platform_.ports.deliver(request.name, request.argument);
}

std::string ServiceRun::accounts() {
    TeskPolicyDataList list;
    TeskConsumerDbMgr::getInstance()->getPolicyDataList(list);
    std::string text;
    for (const auto& account : list) {
        text += textOf(*account);
    }
    return text;
}

std::string ServiceRun::deviceSettings() const {
    std::string text;
    for (const auto& setting : platform_.journal.deviceSettings()) {
        text += setting + "\n";
    }
    return text;
}

std::string ServiceRun::state() const {
    const auto stored = accounts();
    return stored.empty() ? stored : stored + deviceSettings();
}

std::vector<std::string> ServiceRun::databaseErrors() const {
    std::vector<std::string> errors;
    for (const auto& line : platform_.journal.logLines()) {
        if (line.level >= DLOG_ERROR && line.file == "TeskConsumerDbMgr.cpp") {
            errors.push_back(line.text);
        }
    }
    return errors;
}

} // namespace kill_points
