#include "status/device_status.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "TeskConsumerKeys.h"
#include "c_owners.h"
#include "device/application_ids.h"
#include "records/log_line.h"
#include "records/policy_database.h"
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicyTable.h"
#include "session/companion_bus.h"
#include "session/device_policy.h"
#include "session/setting_value.h"
#include "text_pairs.h"

namespace deskwatch {
namespace {

constexpr int launchesTimeout = 20'000;

constexpr std::array shownKeys{TeskConsumerKeys::passwordPolicyApplied, TeskConsumerKeys::deviceEncryptionApplied,
                               TeskConsumerKeys::passwordInputFinished, TeskConsumerKeys::lockType,
                               TeskConsumerKeys::cryptoState,           TeskConsumerKeys::countryIso,
                               TeskConsumerKeys::tutorialInProgress};

constexpr char enforcingAccountKey[] = "pref/tesk-agent/pwd_enforce_account_id";

std::vector<NamedValue> readKeys(DConfClient* store) {
    std::vector<NamedValue> keys;
    keys.reserve(shownKeys.size());
    for (const auto* key : shownKeys) {
        keys.push_back({key, readSetting(store, std::string("/vconf/") + key)});
    }
    return keys;
}

ScreenLaunch readLaunch(const std::string& application, GVariant* entry) {
    ScreenLaunch launch;
    launch.application = application;
    const char* caller = nullptr;
    gboolean waiting = FALSE;
    GVariant* extraData = nullptr;
    g_variant_get(entry, "(&sb@a(ayay))", &caller, &waiting, &extraData);
    const c::VariantOwner owner(extraData);
    launch.caller = caller;
    launch.waiting = waiting != FALSE;
    launch.extraData = text_pairs::read(extraData);
    return launch;
}

/// Adds the launch requests of a running application. Only our stand-ins report them.
void readLaunches(const DeviceSession& session, const std::string& application, std::vector<ScreenLaunch>& screens) {
    const auto companion = companion_bus::companionOf(session.connection(), application);
    GVariant* answer = nullptr;
    if (tesk_desk_companion_call_launches_sync(companion.get(), G_DBUS_CALL_FLAGS_NO_AUTO_START, launchesTimeout,
                                               &answer, nullptr, nullptr) == FALSE) {
        return;
    }
    const c::VariantOwner launches(answer);
    for (gsize index = 0; index < g_variant_n_children(launches.get()); ++index) {
        const c::VariantOwner entry(g_variant_get_child_value(launches.get(), index));
        screens.push_back(readLaunch(application, entry.get()));
    }
}

/// The messages that the mail application received, when it is our stand-in and runs.
std::vector<ReceivedMessage> readMessages(const DeviceSession& session) {
    const auto companion = companion_bus::companionOf(session.connection(), ids::mail);
    GVariant* answer = nullptr;
    if (tesk_desk_companion_call_messages_sync(companion.get(), G_DBUS_CALL_FLAGS_NO_AUTO_START, launchesTimeout,
                                               &answer, nullptr, nullptr) == FALSE) {
        return {};
    }
    const c::VariantOwner list(answer);
    std::vector<ReceivedMessage> messages;
    for (gsize index = 0; index < g_variant_n_children(list.get()); ++index) {
        const c::VariantOwner entry(g_variant_get_child_value(list.get(), index));
        const char* sender = nullptr;
        GVariant* pairs = nullptr;
        g_variant_get(entry.get(), "(&s@a(ayay))", &sender, &pairs);
        const c::VariantOwner owner(pairs);
        messages.push_back({sender, text_pairs::read(owner.get())});
    }
    return messages;
}

std::optional<IdleExit> readIdleExit(const DeviceSession& session) {
    const auto process = session.daemon().processOf(ids::service);
    return process ? idleExitOf(endOfLog(session.device().layout().log()), *process, std::chrono::system_clock::now())
                   : std::nullopt;
}

StoredAccount mergedPolicy(const std::vector<StoredAccount>& accounts) {
    StoredAccount merged;
    if (accounts.empty()) {
        return merged;
    }
    const auto policy = TeskPolicyMerge::strongest(policyRecords(accounts));
    for (const auto& [column, value] : accounts.front()) {
        const auto* const number =
            std::find_if(TeskPolicyTable::numbers.begin(), TeskPolicyTable::numbers.end(),
                         [name = column](const TeskPolicyNumber& row) { return row.column == name; });
        const bool isMerged = number != TeskPolicyTable::numbers.end() && number->rule != TeskMergeRule::NotMerged;
        merged.push_back({column, isMerged ? Value(policy.*number->field) : Value()});
    }
    return merged;
}

std::optional<std::string> textOf(const std::vector<NamedValue>& values, const std::string& name) {
    for (const auto& value : values) {
        const auto* text = value.name == name ? std::get_if<std::string>(&value.value) : nullptr;
        if (text != nullptr) {
            return *text;
        }
    }
    return std::nullopt;
}

} // namespace

DeviceStatus readStatus(const DeviceSession& session) {
    const auto& layout = session.device().layout();
    const c::ObjectOwner<DConfClient> store(dconf_client_new());
    DeviceStatus status;
    status.folder = layout.folder().string();
    status.isServiceRunning = session.daemon().isOwned(ids::service);
    status.accounts = readStoredAccounts(policyDatabase(layout));
    status.mergedPolicy = mergedPolicy(status.accounts);
    status.idleExit = readIdleExit(session);
    status.settings = readDevicePolicy(store.get());
    status.keys = readKeys(store.get());
    status.enforcingAccount = {enforcingAccountKey, readSetting(store.get(), std::string("/apps/") + ids::service +
                                                                                 "/" + enforcingAccountKey)};
    status.lockScreen = readLockScreen(store.get());
    status.faults = readFaults();
    status.wipes = countWipes(layout);
    for (const auto* application : ids::companions) {
        if (session.daemon().isOwned(application)) {
            readLaunches(session, application, status.screens);
        }
    }
    if (session.daemon().isOwned(ids::mail)) {
        status.messages = readMessages(session);
    }
    return status;
}

int countWipes(const DeviceLayout& files) {
    std::error_code none;
    const auto wipes = std::filesystem::file_size(files.internalWipes(), none);
    return none ? 0 : static_cast<int>(wipes);
}

DeviceFacts deviceFacts(const DeviceStatus& status) {
    DeviceFacts facts;
    facts.accounts = policyRecords(status.accounts);
    facts.settings = status.settings;
    facts.country = textOf(status.keys, TeskConsumerKeys::countryIso);
    facts.cryptoState = textOf(status.keys, TeskConsumerKeys::cryptoState);
    for (const auto& fault : status.faults) {
        facts.faults.emplace_back(fault.function, fault.code);
    }
    return facts;
}

} // namespace deskwatch
