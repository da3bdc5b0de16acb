#include "TeskConsumerPolicyMgr.h"

#include <vconf.h>

#include <new>

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerDpmAdapter.h"
#include "TeskConsumerInstance.h"
#include "TeskConsumerKeys.h"
#include "TeskConsumerLog.h"
#include "TeskConsumerPreferenceProxy.h"
#include "TeskConsumerText.h"
#include "TeskConsumerUtil.h"
#include "TeskConsumerVconf.h"
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicySettings.h"

namespace {

constexpr char allSims[] = "*";

/// Logs a setting that the device policy manager refused.
void logRefusal(const char* operation, int value, int result, const TeskConsumerPlace& place) {
    if (result != 0) {
        TESK_WARN_AT(place, "[EAS] Failed %s(%d). [%d]", operation, value, result);
    }
}

void logRules(const TeskPasswordRules& current, const TeskPasswordRules& required,
              const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    TESK_INFO_AT(place, "##### current Type   : [%d], new Type   : [%d]", TeskPasswordDecision::typeOf(current.quality),
                 TeskPasswordDecision::typeOf(required.quality));
    TESK_INFO_AT(place, "##### current Quality: [%d], new Quality: [%d]", current.quality, required.quality);
    TESK_INFO_AT(place, "##### current MinLeng: [%d], new MinLeng: [%d]", current.minLength, required.minLength);
    TESK_INFO_AT(place, "##### current Complex: [%d], new Complex: [%d]", current.complexCharacters,
                 required.complexCharacters);
}

/// Logs why the wearer must act. Returns whether there is a reason.
bool demandsPassword(TeskPasswordVerdict verdict, int requiredQuality,
                     const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    switch (verdict) {
    case TeskPasswordVerdict::QualityTooWeak:
        TESK_ERROR_AT(place, "enforce password by password quality");
        return true;
    case TeskPasswordVerdict::SimplePasswordAllowed:
        TESK_ERROR_AT(place, "enforce password by simple password policy");
        return true;
    case TeskPasswordVerdict::TooShort:
        TESK_ERROR_AT(place, "enforce password by password length");
        return true;
    case TeskPasswordVerdict::TooFewComplexCharacters:
        TESK_ERROR_AT(place, "enforce password by min complex charater");
        return true;
    case TeskPasswordVerdict::NoLock:
        TESK_ERROR_AT(place, "enforce password. quality : %d, lock type : PIN", requiredQuality);
        return true;
    case TeskPasswordVerdict::PinInsteadOfPassword:
        TESK_ERROR_AT(place, "enforce password. quality : %d, lock type : Password", requiredQuality);
        return true;
    case TeskPasswordVerdict::Satisfied:
        break;
    }
    return false;
}

} // namespace

TeskConsumerPolicyMgr* TeskConsumerPolicyMgr::getInstance() {
    return teskConsumerInstance<TeskConsumerPolicyMgr>();
}

TeskConsumerPolicyMgr::TeskConsumerPolicyMgr() : adapter(std::make_unique<TeskConsumerDpmAdapter>()) {
    TESK_INFO("");
}

TeskConsumerPolicyMgr::~TeskConsumerPolicyMgr() {
    TESK_INFO("");
}

int TeskConsumerPolicyMgr::registerClient() {
    TESK_INFO("Enter");
    return __callWhileNoAccountIsStored(&ITeskConsumerPolicyAdapter::registerClient);
}

int TeskConsumerPolicyMgr::deregisterClient() {
    TESK_INFO("Enter");
    return __callWhileNoAccountIsStored(&ITeskConsumerPolicyAdapter::deregisterClient);
}

int TeskConsumerPolicyMgr::factoryReset() {
    const TeskConsumerTrace trace;
    const int result = adapter->wipeInternalStorage();
    if (result != 0) {
        TESK_WARN("Failed to wipe internal storage. : [%d]", result);
    }
    return 0;
}

int TeskConsumerPolicyMgr::applyPolicy() {
    TESK_INFO("Enter");
    const auto policy = getStrongPolicy();
    // both compare the policy with what the device holds before anything is written
    const bool enforcePassword = __getPasswordEnforceFlag(policy);
    const bool enforceEncryption = __getOdeEnforceFlag(policy);

    const auto place = TeskConsumerPlace::here();
    __apply(*policy, place);
    __publishEncryption(enforceEncryption, place);
    __publishPassword(enforcePassword, place);
    return enforcePassword ? TESK_POLICY_PASSWORD_REQUIRED : 0;
}

void TeskConsumerPolicyMgr::applyPolicyAndWarn(const TeskConsumerPlace& place) {
    if (applyPolicy() == TESK_POLICY_PASSWORD_REQUIRED) {
        TESK_WARN_AT(place, "Password policy requires stronger password.");
    }
}

std::shared_ptr<TeskPolicyData> TeskConsumerPolicyMgr::getStrongPolicy() {
    auto strong = std::make_shared<TeskPolicyData>();
    TeskConsumerDbMgr::getInstance()->getPolicyDataList(
        [&strong](const TeskPolicyData& account) { TeskPolicyMerge::takeIn(*strong, account); });
    TESK_INFO("<<<<<<<<<< Strong policy >>>>>>>>>>");
    return strong;
}

int TeskConsumerPolicyMgr::getIsRequiredDeviceEncryption(bool* required) {
    const auto policy = getStrongPolicy();
    if (!policy) {
        TESK_ERROR("Failed to get strong policy.");
        return -1;
    }
    *required = __getOdeEnforceFlag(policy);
    return 0;
}

bool TeskConsumerPolicyMgr::isDeviceEncrypted() {
    const TeskConsumerText state(vconf_get_str(TeskConsumerKeys::cryptoState));
    return TeskPolicySettings::isEncrypted(state.get());
}

int TeskConsumerPolicyMgr::getCountryMinPasswordLength(int* length) {
    const TeskConsumerText country(vconf_get_str(TeskConsumerKeys::countryIso));
    *length = TeskPolicySettings::countryMinLength(country.get());
    return 0;
}

int TeskConsumerPolicyMgr::__callWhileNoAccountIsStored(int (ITeskConsumerPolicyAdapter::*operation)(),
                                                        const TeskConsumerPlace& place) {
    int count = 0;
    TeskConsumerDbMgr::getInstance()->getAllEasAccountCount(&count);
    TESK_INFO_AT(place, "easAccountCount : %d", count);
    if (count != 0) {
        return 0;
    }
    const int result = (adapter.get()->*operation)();
    if (result != 0) {
        TESK_WARN_AT(place, "Failed to register policy admin : %d", result);
    }
    return 0;
}

int TeskConsumerPolicyMgr::__getPasswordEnforcingAccountId(int* accountId) {
    TeskPasswordEnforcer enforcer;
    TeskConsumerDbMgr::getInstance()->getPolicyDataList(
        [&enforcer](const TeskPolicyData& account) { TeskPolicyMerge::takeIn(enforcer, account); });
    *accountId = enforcer.accountId;
    TESK_INFO("Password enforcing account id : %d", *accountId);
    return 0;
}

bool TeskConsumerPolicyMgr::__getOdeEnforceFlag(const std::shared_ptr<TeskPolicyData>& policy) {
    TESK_INFO("Enter");
    if (policy->requireDeviceEncryption != 0 && !isDeviceEncrypted()) {
        return true;
    }
    TESK_INFO("Leave");
    return false;
}

bool TeskConsumerPolicyMgr::__getPasswordEnforceFlag(const std::shared_ptr<TeskPolicyData>& policy) {
    TESK_INFO("Enter");
    if (!policy) {
        TESK_ERROR("newEasPolicy is NULL");
        return false;
    }
    TeskPasswordRules current;
    if (!__readCurrentRules(current)) {
        return true; // a device that cannot tell its state is sent to set a lock rather than left alone
    }
    const auto required = TeskPasswordDecision::required(*policy, __countryMinLengthFor(*policy));
    logRules(current, required);

    const auto verdict = TeskPasswordDecision::compareRules(current, required, policy->allowSimplePassword != 0);
    if (demandsPassword(verdict, required.quality)) {
        return true;
    }
    const int lockType = TeskConsumerVconf::get(TeskConsumerKeys::lockType);
    return demandsPassword(TeskPasswordDecision::compareLock(required.quality, lockType), required.quality);
}

bool TeskConsumerPolicyMgr::__readCurrentRules(TeskPasswordRules& current, const TeskConsumerPlace& place) {
    int result = adapter->getPasswordQuality(&current.quality);
    if (result != 0) {
        TESK_ERROR_AT(place, "Failed to get password quality. [%d]", result);
        return false;
    }
    result = adapter->getPasswordMinLength(&current.minLength);
    if (result != 0) {
        TESK_ERROR_AT(place, "Failed to get password min length. [%d]", result);
        return false;
    }
    __migrateQuality(current, place);
    result = adapter->getPasswordMinComplexCharacters(&current.complexCharacters);
    if (result != 0) {
        TESK_ERROR_AT(place, "Failed to get password min complex characters. [%d]", result);
        return false;
    }
    return true;
}

/// Devices that were managed before the device policy manager existed hold a quality that it no longer knows.
void TeskConsumerPolicyMgr::__migrateQuality(TeskPasswordRules& current, const TeskConsumerPlace& place) {
    const int migratedQuality = TeskPasswordDecision::migrated(current.quality);
    if (migratedQuality == current.quality) {
        return;
    }
    TESK_WARN_AT(place, "Before MDM -> DPM migration - current Type: [%d], current Quality: [%d]",
                 TeskPasswordDecision::typeOf(current.quality), current.quality);
    int result = adapter->setPasswordQuality(migratedQuality);
    if (result != 0) {
        TESK_WARN_AT(place, "setPasswordQuality failed: [%d]", result);
    }
    result = adapter->setPasswordMinLength(current.minLength);
    if (result != 0) {
        TESK_WARN_AT(place, "setPasswordMinLength failed: [%d]", result);
    }
    current.quality = migratedQuality;
    TESK_WARN_AT(place, "After MDM -> DPM migration - current Type: [%d], current Quality: [%d]",
                 TeskPasswordDecision::typeOf(current.quality), current.quality);
}

/// The country decides nothing but the length of a password, so it is read only for a policy that demands one.
int TeskConsumerPolicyMgr::__countryMinLengthFor(const TeskPolicyData& policy) {
    int length = 0;
    if (policy.devicePasswordEnabled != 0) {
        getCountryMinPasswordLength(&length);
    }
    return length;
}

void TeskConsumerPolicyMgr::__apply(const TeskPolicyData& policy, const TeskConsumerPlace& place) {
    if (policy.devicePasswordEnabled == 0) {
        TeskConsumerVconf::set(TeskConsumerKeys::passwordInputFinished, 0, place);
    }
    const int quality = TeskPasswordDecision::requiredQuality(policy);
    logRefusal("setPasswordQuality", quality, adapter->setPasswordQuality(quality), place);
    // after the quality, since a country that changes meanwhile counts for the length that is written now
    const auto settings = TeskPolicySettings::of(policy, __countryMinLengthFor(policy));
    __applyPasswordRules(settings, place);
    __applyRestrictions(settings, place);
    __applyEncryption(settings, place);
}

void TeskConsumerPolicyMgr::__applyPasswordRules(const TeskPolicySettings& settings, const TeskConsumerPlace& place) {
    logRefusal("setPasswordMinLength", settings.minLength, adapter->setPasswordMinLength(settings.minLength), place);
    logRefusal("setPasswordMaxFailedAttempts", settings.failedAttempts,
               adapter->setPasswordMaxFailedAttempts(settings.failedAttempts), place);
    logRefusal("setPasswordMinComplexCharacters", settings.complexCharacters,
               adapter->setPasswordMinComplexCharacters(settings.complexCharacters), place);
    logRefusal("setPasswordMaxInactivityTimeDeviceLock", settings.inactivity,
               adapter->setPasswordMaxInactivityTimeDeviceLock(settings.inactivity), place);
    logRefusal("setPasswordExpires", settings.expiration, adapter->setPasswordExpires(settings.expiration), place);
    logRefusal("setPasswordHistory", settings.history, adapter->setPasswordHistory(settings.history), place);
}

void TeskConsumerPolicyMgr::__applyRestrictions(const TeskPolicySettings& settings, const TeskConsumerPlace& place) {
    logRefusal("setRestrictionWifi", settings.wifi, adapter->setRestrictionWifi(settings.wifi), place);
    logRefusal("setRestrictionMessaging", settings.messaging,
               adapter->setRestrictionMessaging(allSims, settings.messaging), place);
    logRefusal("setRestrictionPopImap", settings.popImap, adapter->setRestrictionPopImap(settings.popImap), place);
}

void TeskConsumerPolicyMgr::__applyEncryption(const TeskPolicySettings& settings, const TeskConsumerPlace& place) {
    const bool required = settings.encryption;
    if (required && !settings.needsEncryptionWrite(isDeviceEncrypted())) {
        return;
    }
    logRefusal("setSecurityInternalStorageEncryption", static_cast<int>(required),
               adapter->setSecurityInternalStorageEncryption(required), place);
}

void TeskConsumerPolicyMgr::__publishEncryption(bool enforce, const TeskConsumerPlace& place) {
    TeskConsumerVconf::set(TeskConsumerKeys::deviceEncryptionApplied, enforce ? 0 : 1, place);
    if (enforce) {
        TeskConsumerUtil::enableOdeSetting();
    }
}

void TeskConsumerPolicyMgr::__publishPassword(bool enforce, const TeskConsumerPlace& place) {
    if (!enforce) {
        TESK_INFO_AT(place, "NOT Enforce password");
        TeskConsumerVconf::set(TeskConsumerKeys::passwordPolicyApplied, 1, place);
        return;
    }
    TESK_INFO_AT(place, "Enforce password");
    TeskConsumerVconf::set(TeskConsumerKeys::passwordPolicyApplied, 0, place);
    int accountId = 0;
    __getPasswordEnforcingAccountId(&accountId);
    TeskConsumerPreferenceProxy::setPwdEnforcingAccountId(accountId);
    TeskConsumerUtil::launchPopup();
}
