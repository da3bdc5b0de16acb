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
#include "rules/TeskPolicyMerge.h"
#include "rules/TeskPolicySettings.h"

namespace {

constexpr char allSims[] = "*";

/// Logs a setting that the device policy manager refused.
void logRefusal(const char* operation, int value, int result) {
    if (result != 0) {
        TESK_WARN("[EAS] Failed %s(%d). [%d]", operation, value, result);
    }
}

void logRules(const TeskPasswordRules& current, const TeskPasswordRules& required) {
    TESK_INFO("##### current Type   : [%d], new Type   : [%d]", TeskPasswordDecision::typeOf(current.quality),
              TeskPasswordDecision::typeOf(required.quality));
    TESK_INFO("##### current Quality: [%d], new Quality: [%d]", current.quality, required.quality);
    TESK_INFO("##### current MinLeng: [%d], new MinLeng: [%d]", current.minLength, required.minLength);
    TESK_INFO("##### current Complex: [%d], new Complex: [%d]", current.complexCharacters, required.complexCharacters);
}

/// Logs why the wearer must act. Returns whether there is a reason.
bool demandsPassword(TeskPasswordVerdict verdict, int requiredQuality) {
    switch (verdict) {
    case TeskPasswordVerdict::QualityTooWeak:
        TESK_ERROR("enforce password by password quality");
        return true;
    case TeskPasswordVerdict::SimplePasswordAllowed:
        TESK_ERROR("enforce password by simple password policy");
        return true;
    case TeskPasswordVerdict::TooShort:
        TESK_ERROR("enforce password by password length");
        return true;
    case TeskPasswordVerdict::TooFewComplexCharacters:
        TESK_ERROR("enforce password by min complex charater");
        return true;
    case TeskPasswordVerdict::NoLock:
        TESK_ERROR("enforce password. quality : %d, lock type : PIN", requiredQuality);
        return true;
    case TeskPasswordVerdict::PinInsteadOfPassword:
        TESK_ERROR("enforce password. quality : %d, lock type : Password", requiredQuality);
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

    __apply(*policy);
    __publishEncryption(enforceEncryption);
    __publishPassword(enforcePassword);
    return enforcePassword ? TESK_POLICY_PASSWORD_REQUIRED : 0;
}

void TeskConsumerPolicyMgr::applyPolicyAndWarn() {
    if (applyPolicy() == TESK_POLICY_PASSWORD_REQUIRED) {
        TESK_WARN("Password policy requires stronger password.");
    }
}

std::shared_ptr<TeskPolicyData> TeskConsumerPolicyMgr::getStrongPolicy() {
    TeskPolicyDataList accounts;
    TeskConsumerDbMgr::getInstance()->getPolicyDataList(accounts);
    auto strong = std::make_shared<TeskPolicyData>(TeskPolicyMerge::strongest(accounts));
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

int TeskConsumerPolicyMgr::__callWhileNoAccountIsStored(int (ITeskConsumerPolicyAdapter::*operation)()) {
    int count = 0;
    TeskConsumerDbMgr::getInstance()->getAllEasAccountCount(&count);
    TESK_INFO("easAccountCount : %d", count);
    if (count != 0) {
        return 0;
    }
    const int result = (adapter.get()->*operation)();
    if (result != 0) {
        TESK_WARN("Failed to register policy admin : %d", result);
    }
    return 0;
}

int TeskConsumerPolicyMgr::__getPasswordEnforcingAccountId(int* accountId) {
    TeskPolicyDataList accounts;
    TeskConsumerDbMgr::getInstance()->getPolicyDataList(accounts);
    *accountId = TeskPolicyMerge::passwordEnforcingAccountId(accounts);
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
    int countryMinLength = 0;
    getCountryMinPasswordLength(&countryMinLength);
    const auto required = TeskPasswordDecision::required(*policy, countryMinLength);
    logRules(current, required);

    const auto verdict = TeskPasswordDecision::compareRules(current, required, policy->allowSimplePassword != 0);
    if (demandsPassword(verdict, required.quality)) {
        return true;
    }
    int lockType = 0;
    vconf_get_int(TeskConsumerKeys::lockType, &lockType);
    return demandsPassword(TeskPasswordDecision::compareLock(required.quality, lockType), required.quality);
}

bool TeskConsumerPolicyMgr::__readCurrentRules(TeskPasswordRules& current) {
    int result = adapter->getPasswordQuality(&current.quality);
    if (result != 0) {
        TESK_ERROR("Failed to get password quality. [%d]", result);
        return false;
    }
    result = adapter->getPasswordMinLength(&current.minLength);
    if (result != 0) {
        TESK_ERROR("Failed to get password min length. [%d]", result);
        return false;
    }
    __migrateQuality(current);
    result = adapter->getPasswordMinComplexCharacters(&current.complexCharacters);
    if (result != 0) {
        TESK_ERROR("Failed to get password min complex characters. [%d]", result);
        return false;
    }
    return true;
}

/// Devices that were managed before the device policy manager came hold a quality that it no longer knows.
void TeskConsumerPolicyMgr::__migrateQuality(TeskPasswordRules& current) {
    const int migratedQuality = TeskPasswordDecision::migrated(current.quality);
    if (migratedQuality == current.quality) {
        return;
    }
    TESK_WARN("Before MDM -> DPM migration - current Type: [%d], current Quality: [%d]",
              TeskPasswordDecision::typeOf(current.quality), current.quality);
    int result = adapter->setPasswordQuality(migratedQuality);
    if (result != 0) {
        TESK_WARN("setPasswordQuality failed: [%d]", result);
    }
    result = adapter->setPasswordMinLength(current.minLength);
    if (result != 0) {
        TESK_WARN("setPasswordMinLength failed: [%d]", result);
    }
    current.quality = migratedQuality;
    TESK_WARN("After MDM -> DPM migration - current Type: [%d], current Quality: [%d]",
              TeskPasswordDecision::typeOf(current.quality), current.quality);
}

void TeskConsumerPolicyMgr::__apply(const TeskPolicyData& policy) {
    if (policy.devicePasswordEnabled == 0) {
        vconf_set_int(TeskConsumerKeys::passwordInputFinished, 0);
    }
    int countryMinLength = 0;
    getCountryMinPasswordLength(&countryMinLength);
    const auto settings = TeskPolicySettings::of(policy, countryMinLength);
    __applyPasswordRules(settings);
    __applyRestrictions(settings);
    __applyEncryption(settings);
}

void TeskConsumerPolicyMgr::__applyPasswordRules(const TeskPolicySettings& settings) {
    logRefusal("setPasswordQuality", settings.quality, adapter->setPasswordQuality(settings.quality));
    logRefusal("setPasswordMinLength", settings.minLength, adapter->setPasswordMinLength(settings.minLength));
    logRefusal("setPasswordMaxFailedAttempts", settings.failedAttempts,
               adapter->setPasswordMaxFailedAttempts(settings.failedAttempts));
    logRefusal("setPasswordMinComplexCharacters", settings.complexCharacters,
               adapter->setPasswordMinComplexCharacters(settings.complexCharacters));
    logRefusal("setPasswordMaxInactivityTimeDeviceLock", settings.inactivity,
               adapter->setPasswordMaxInactivityTimeDeviceLock(settings.inactivity));
    logRefusal("setPasswordExpires", settings.expiration, adapter->setPasswordExpires(settings.expiration));
    logRefusal("setPasswordHistory", settings.history, adapter->setPasswordHistory(settings.history));
}

void TeskConsumerPolicyMgr::__applyRestrictions(const TeskPolicySettings& settings) {
    logRefusal("setRestrictionWifi", settings.wifi, adapter->setRestrictionWifi(settings.wifi));
    logRefusal("setRestrictionMessaging", settings.messaging,
               adapter->setRestrictionMessaging(allSims, settings.messaging));
    logRefusal("setRestrictionPopImap", settings.popImap, adapter->setRestrictionPopImap(settings.popImap));
}

void TeskConsumerPolicyMgr::__applyEncryption(const TeskPolicySettings& settings) {
    const bool required = settings.encryption;
    if (required && !settings.needsEncryptionWrite(isDeviceEncrypted())) {
        return;
    }
    logRefusal("setSecurityInternalStorageEncryption", static_cast<int>(required),
               adapter->setSecurityInternalStorageEncryption(required));
}

void TeskConsumerPolicyMgr::__publishEncryption(bool enforce) {
    vconf_set_int(TeskConsumerKeys::deviceEncryptionApplied, enforce ? 0 : 1);
    if (enforce) {
        TeskConsumerUtil::enableOdeSetting();
    }
}

void TeskConsumerPolicyMgr::__publishPassword(bool enforce) {
    if (!enforce) {
        TESK_INFO("NOT Enforce password");
        vconf_set_int(TeskConsumerKeys::passwordPolicyApplied, 1);
        return;
    }
    TESK_INFO("Enforce password");
    vconf_set_int(TeskConsumerKeys::passwordPolicyApplied, 0);
    int accountId = 0;
    __getPasswordEnforcingAccountId(&accountId);
    TeskConsumerPreferenceProxy::setPwdEnforcingAccountId(accountId);
    TeskConsumerUtil::launchPopup();
}
