#include "check/evidence.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "TeskConsumerKeys.h"
#include "accounts/account_store.h"
#include "device/application_ids.h"
#include "device/plain_text.h"
#include "records/log_line.h"
#include "records/policy_database.h"
#include "records/service_log.h"
#include "session/device_policy.h"
#include "session/lock_screen.h"
#include "session/setting_value.h"
#include "status/device_status.h"
#include "text/json_input.h"

namespace deskwatch {
namespace {

using Json = nlohmann::json;
namespace fs = std::filesystem;

/// The service's operations that write the settings, in the order of deviceSettings, as its log names them.
constexpr std::array<const char*, 11> operations{"setPasswordQuality",
                                                 "setPasswordMinLength",
                                                 "setPasswordMaxFailedAttempts",
                                                 "setPasswordMinComplexCharacters",
                                                 "setPasswordMaxInactivityTimeDeviceLock",
                                                 "setPasswordExpires",
                                                 "setPasswordHistory",
                                                 "setRestrictionWifi",
                                                 "setRestrictionMessaging",
                                                 "setRestrictionPopImap",
                                                 "setSecurityInternalStorageEncryption"};

/// The settings that were refused when the service last applied a policy.
std::set<std::size_t> refusedIn(const fs::path& log) {
    std::set<std::size_t> refused;
    std::istringstream lines(endOfLog(log));
    for (std::string line; std::getline(lines, line);) {
        if (contains(line, ": applyPolicy(") && contains(line, "Enter")) {
            refused.clear();
        }
        for (std::size_t setting = 0; setting < operations.size(); ++setting) {
            if (contains(line, std::string(refusedSetting) + operations.at(setting) + "(")) {
                refused.insert(setting);
            }
        }
    }
    return refused;
}

void readStore(const fs::path& file, Evidence& evidence) {
    try {
        evidence.hasStore = fs::exists(file);
        evidence.accounts = readStoredAccounts(file);
    } catch (const std::runtime_error& error) {
        evidence.storeProblem = error.what();
    }
}

std::optional<std::string> textOf(const Value& value) {
    const auto* const text = std::get_if<std::string>(&value);
    return text != nullptr ? std::optional(*text) : std::nullopt;
}

std::optional<int> numberOf(const Value& value) {
    const int* const number = std::get_if<int>(&value);
    return number != nullptr ? std::optional(*number) : std::nullopt;
}

/// `read` yields the value of a shared key.
template <class Read>
void readKeys(const Read& read, Evidence& evidence) {
    evidence.country = textOf(read(TeskConsumerKeys::countryIso));
    evidence.cryptoState = textOf(read(TeskConsumerKeys::cryptoState));
    evidence.lockType = numberOf(read(TeskConsumerKeys::lockType));
    evidence.wasLockApplied = numberOf(read(TeskConsumerKeys::passwordPolicyApplied)) == 1;
}

Value valueOf(const Json& object, const std::string& name) {
    const auto found = object.find(name);
    if (found == object.end() || found->is_null()) {
        return {};
    }
    return found->is_number_integer() ? Value(found->get<int>()) : Value(found->get<std::string>());
}

Json parseSettings(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream.is_open()) {
        throw std::runtime_error("cannot read " + file.string() +
                                 ": a copy of a device has its settings there, as status --json writes them");
    }
    const std::string text(std::istreambuf_iterator<char>(stream), {});
    requireJson(file.string(), text, "");
    return Json::parse(text);
}

void readSettings(const fs::path& file, Evidence& evidence) {
    try {
        const Json dump = parseSettings(file);
        for (std::size_t setting = 0; setting < deviceSettings.size(); ++setting) {
            evidence.held.at(setting) = numberOf(valueOf(dump.at("settings"), deviceSettings.at(setting).name));
        }
        readKeys([&](const char* key) { return valueOf(dump.at("keys"), key); }, evidence);
        if (dump.contains("lockScreen")) {
            evidence.lockScreen.passwordAge = dump.at("lockScreen").at("passwordAge").get<int>();
        }
        evidence.wipes = dump.value("wipes", 0);
        if (dump.contains("administrator")) {
            evidence.isAdministered = dump.at("administrator").get<bool>();
        }
    } catch (const Json::exception& error) {
        throw std::runtime_error(file.string() + " is not what status --json writes: " + jsonFault(error));
    }
}

/// Accounts of the mail application whose policy the service should have.
std::vector<int> connectedAccounts(const DeviceLayout& layout) {
    std::vector<int> connected;
    const AccountStore store(layout);
    for (const int id : store.ids()) {
        if (!store.read(id).message.empty()) {
            connected.push_back(id);
        }
    }
    return connected;
}

bool isSet(DConfClient* store, const std::string& path) {
    const c::VariantOwner value(dconf_client_read(store, path.c_str()));
    return value != nullptr;
}

} // namespace

Evidence readEvidence(const DeviceSession& session) {
    return readEvidence(session, session.device().layout());
}

Evidence readEvidence(const DeviceSession& /*speaks as an application of the watch*/, const DeviceLayout& files) {
    const c::ObjectOwner<DConfClient> store(dconf_client_new());
    Evidence evidence;
    readStore(policyDatabase(files), evidence);
    evidence.held = readDevicePolicy(store.get());
    readKeys([&](const char* key) { return readSetting(store.get(), std::string("/vconf/") + key); }, evidence);
    evidence.lockScreen = readLockScreen(store.get());
    evidence.isAdministered = isSet(store.get(), std::string("/dpm/clients/") + ids::service);
    evidence.refused = refusedIn(files.log());
    evidence.wipes = countWipes(files);
    evidence.connected = connectedAccounts(files);
    return evidence;
}

Evidence readEvidence(const fs::path& folder) {
    Evidence evidence;
    readStore(folder / ".tesk.db", evidence);
    readSettings(folder / "settings.json", evidence);
    evidence.refused = refusedIn(folder / "log");
    return evidence;
}

} // namespace deskwatch
