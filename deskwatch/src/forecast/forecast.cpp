#include "forecast/forecast.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <stdexcept>
#include <utility>

#include "actors/mail_application.h"
#include "device/application_ids.h"
#include "device/plain_text.h"
#include "explain/device_facts.h"
#include "forecast/device_copy.h"
#include "records/service_log.h"
#include "rules/TeskPolicyMerge.h"

namespace deskwatch {
namespace {

PolicyState stateOf(const DeviceStatus& status) {
    PolicyState state{TeskPolicyMerge::strongest(policyRecords(status.accounts)), status.settings, status.keys};
    state.keys.push_back(status.enforcingAccount);
    return state;
}

std::string extraDataOf(const ScreenLaunch& launch, const std::string& wanted) {
    for (const auto& [key, value] : launch.extraData) {
        if (key == wanted) {
            return value;
        }
    }
    return "";
}

std::string reasonOf(const ScreenLaunch& launch, const ServiceWarnings& warnings) {
    if (launch.application == ids::popup) {
        const std::string why = warnings.lockReason.empty() ? "" : ": " + warnings.lockReason;
        return "asks for a lock for " + extraDataOf(launch, "ACCOUNT_NAME") + why;
    }
    return launch.application == ids::encryptionSettings ? "the menu for encryption is enabled" : "";
}

/// A file on the internal storage, which shows whether the storage is wiped.
class WipeMark {
public:
    explicit WipeMark(const DeviceLayout& layout) : file_(layout.internalStorage() / "not-wiped") { set(); }

    /// Whether the storage was wiped since the last time.
    bool takeWipe() const {
        const bool isWiped = !std::filesystem::exists(file_);
        set();
        return isWiped;
    }

private:
    void set() const { const std::ofstream file(file_); }

    std::filesystem::path file_;
};

/// Has the service of a copied watch handle messages and notes what it does.
class Trial {
public:
    explicit Trial(const Device& device) : copy_(device) { log_.take(); }

    Forecast run(const std::vector<SourcedMessage>& messages) {
        const auto before = readStatus(copy_.session());
        forecast_.before = stateOf(before);
        if (!copy_.isServiceRunning()) {
            observe("start of the service", {});
        }
        for (const auto& message : messages) {
            observe(message.source, {requests::policyUpdate(message.text)});
        }
        compare(before, readStatus(copy_.session()));
        return std::move(forecast_);
    }

private:
    void observe(const std::string& source, const std::vector<Request>& requests) {
        try {
            sendAsMailApplication(copy_.session(), requests, [](const auto& /*outcome*/) {});
        } catch (const std::runtime_error&) {
            const auto warnings = log_.take().others;
            throw std::runtime_error("the service of the copied watch ends (" + source + ")" +
                                     (warnings.empty() ? "" : ": " + warnings.back()));
        }
        const auto warnings = log_.take();
        const auto status = readStatus(copy_.session());
        noteScreens(source, status, warnings);
        noteRemarks(source, !status.accounts.empty(), warnings);
    }

    /// Each application tells all of its launch requests, the earlier ones first.
    void noteScreens(const std::string& source, const DeviceStatus& status, const ServiceWarnings& warnings) {
        std::map<std::string, std::size_t> count;
        for (const auto& launch : status.screens) {
            if (++count[launch.application] > seen_[launch.application]) {
                seen_[launch.application] = count[launch.application];
                forecast_.screens.push_back({launch, source, reasonOf(launch, warnings)});
            }
        }
    }

    void noteRemarks(const std::string& source, bool isAdministered, const ServiceWarnings& warnings) {
        if (warnings.isTutorialShown) {
            forecast_.remarks.push_back(source + ": the popup would ask for a lock (" + warnings.lockReason +
                                        "), but stays closed while the tutorial is shown");
        }
        if (wipeMark_.takeWipe()) {
            forecast_.remarks.push_back(source + " wipes the internal storage at once");
        }
        bool isTold = false;
        for (const auto& warning : warnings.others) {
            const bool isForWantOfAccounts = !isAdministered && startsWith(warning, refusedSetting);
            if (!isForWantOfAccounts || !std::exchange(isTold, true)) {
                forecast_.remarks.push_back(source + ": " + (isForWantOfAccounts ? takesNoSetting : warning));
            }
        }
    }

    void compare(const DeviceStatus& before, const DeviceStatus& after) {
        forecast_.after = stateOf(after);
        for (const auto& account : after.accounts) {
            const bool isUnchanged =
                std::find(before.accounts.begin(), before.accounts.end(), account) != before.accounts.end();
            if (!isUnchanged) {
                noteAccount(before, *policyRecords({account}).front());
            }
        }
    }

    void noteAccount(const DeviceStatus& before, const TeskPolicyData& record) {
        const auto earlier = policyRecords(before.accounts);
        const bool isNew = std::none_of(earlier.begin(), earlier.end(), [&record](const auto& candidate) {
            return candidate->accountId == record.accountId;
        });
        forecast_.accounts.push_back({record.accountId, record.accountName, isNew});
    }

    DeviceCopy copy_;
    ServiceLog log_{copy_.session().device().layout().log()};
    WipeMark wipeMark_{copy_.session().device().layout()};
    /// The launch requests that are noted, by application.
    std::map<std::string, std::size_t> seen_;
    Forecast forecast_;
};

} // namespace

Forecast forecast(const Device& device, const std::vector<SourcedMessage>& messages) {
    for (const auto& message : messages) {
        if (const auto reason = whyTooLong(requests::policyUpdate(message.text)); !reason.empty()) {
            throw std::runtime_error(message.source + ": " + reason);
        }
    }
    device.requireBooted();
    return Trial(device).run(messages);
}

} // namespace deskwatch
