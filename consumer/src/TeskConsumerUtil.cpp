#include "TeskConsumerUtil.h"

#include <app_control.h>
#include <pwd.h>
#include <unistd.h>
#include <vconf.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <type_traits>

#include "TeskConsumerDbMgr.h"
#include "TeskConsumerIpcMgr.h"
#include "TeskConsumerKeys.h"
#include "TeskConsumerLog.h"
#include "TeskConsumerPolicyMgr.h"
#include "TeskConsumerPreferenceProxy.h"
#include "TeskConsumerText.h"

namespace {

constexpr char popupId[] = "com.velmor.tesk-popup";
constexpr char encryptionPopupId[] = "com.velmor.dialset.encryption";
constexpr char settingsId[] = "com.velmor.dialset.service";
constexpr char lockSettingsId[] = "com.velmor.veilpane-setting";
constexpr char mailId[] = "com.velmor.quillon.consumer";

constexpr char maxPasswordLength[] = "16";
constexpr char unknownAccountName[] = "EAS";
constexpr std::size_t numberTextSize = 16;
constexpr long fallbackUserBufferSize = 16384;
constexpr std::size_t maxUserBufferSize = 1UL << 20U;

struct AppControlDestroyer {
    void operator()(app_control_h request) const { app_control_destroy(request); }
};
using AppControl = std::unique_ptr<std::remove_pointer_t<app_control_h>, AppControlDestroyer>;

/// A request, or null with the platform's code in *result.
AppControl newRequest(int* result) {
    app_control_h created = nullptr;
    *result = app_control_create(&created);
    return AppControl(*result == APP_CONTROL_ERROR_NONE ? created : nullptr);
}

AppControl newRequestUnchecked() {
    int ignored = APP_CONTROL_ERROR_NONE;
    return newRequest(&ignored);
}

AppControl newCheckedRequest(const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    int result = APP_CONTROL_ERROR_NONE;
    AppControl request = newRequest(&result);
    if (!request) {
        TESK_WARN_AT(place, "app_control_create() failed: %d", result);
    }
    return request;
}

bool setAppId(const AppControl& request, const char* appId, const TeskConsumerPlace& place) {
    const int result = app_control_set_app_id(request.get(), appId);
    if (result != APP_CONTROL_ERROR_NONE) {
        TESK_WARN_AT(place, "app_control_set_app_id() failed: %d", result);
    }
    return result == APP_CONTROL_ERROR_NONE;
}

bool addExtraData(const AppControl& request, const char* key, const char* value, const TeskConsumerPlace& place) {
    const int result = app_control_add_extra_data(request.get(), key, value);
    if (result != APP_CONTROL_ERROR_NONE) {
        TESK_WARN_AT(place, "app_control_add_extra_data() failed: %d", result);
    }
    return result == APP_CONTROL_ERROR_NONE;
}

bool send(const AppControl& request, app_control_reply_cb reply, const TeskConsumerPlace& place) {
    const int result = app_control_send_launch_request(request.get(), reply, nullptr);
    if (result != APP_CONTROL_ERROR_NONE) {
        TESK_WARN_AT(place, "app_control_send_launch_request() failed: %d", result);
    }
    return result == APP_CONTROL_ERROR_NONE;
}

/// The steps that all launches with one extra data item share; the request is released before it returns.
int sendWithItem(AppControl request, const char* appId, const char* key, const char* value, app_control_reply_cb reply,
                 const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    const bool sent =
        setAppId(request, appId, place) && addExtraData(request, key, value, place) && send(request, reply, place);
    return sent ? 0 : -1;
}

/// What the wearer has answered in the popup.
void popupReplied(app_control_h /*request*/, app_control_h reply, app_control_result_e /*result*/, void* /*userData*/) {
    char* text = nullptr;
    app_control_get_extra_data(reply, "result", &text);
    const TeskConsumerText answer(text);
    if (!answer) {
        return;
    }
    if (std::strcmp(answer.get(), "ok") == 0) {
        TeskConsumerUtil::__enforcePassword();
    } else if (std::strcmp(answer.get(), "sync_off_ok") == 0) {
        TeskConsumerIpcMgr::getInstance()->sendEasItpolicyReq("req_disable_password_eas_accounts", "");
    }
}

/// The platform refuses a request with an empty text, so an account without a name gets the one of an unknown account.
std::string enforcingAccountName() {
    TeskPolicyData account;
    const int accountId = TeskConsumerPreferenceProxy::getPwdEnforcingAccountId();
    const int result = TeskConsumerDbMgr::getInstance()->getPolicyDataByAccountId(accountId, account);
    return result == 0 && !account.accountName.empty() ? account.accountName : unknownAccountName;
}

const char* flagText(int flag) {
    return flag != 0 ? "1" : "0";
}

bool addPasswordRules(const AppControl& request, const TeskConsumerPlace& place) {
    auto* const policyMgr = TeskConsumerPolicyMgr::getInstance();
    const auto policy = policyMgr->getStrongPolicy();
    if (!policy) {
        TESK_WARN_AT(place, "Error occurred getting string policy");
        return true;
    }
    int minLength = 0;
    policyMgr->getCountryMinPasswordLength(&minLength);
    minLength = std::max<int>(minLength, policy->minDevicePasswordLength);
    std::array<char, numberTextSize> minLengthText{};
    std::snprintf(minLengthText.data(), minLengthText.size(), "%d", minLength);

    return addExtraData(request, "password_min_length", minLengthText.data(), place) &&
           addExtraData(request, "password_max_length", maxPasswordLength, place) &&
           addExtraData(request, "allow_simple", flagText(policy->allowSimplePassword), place) &&
           addExtraData(request, "password_required", flagText(policy->alphanumericDevicePasswordRequired), place);
}

bool sendLockRequest(const AppControl& request, const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    return setAppId(request, popupId, place) && addExtraData(request, "OPERATION", "SET_PRIVACY_LOCK", place) &&
           addExtraData(request, "ACCOUNT_NAME", enforcingAccountName().c_str(), place) &&
           addPasswordRules(request, place) && send(request, popupReplied, place);
}

struct UserLookUp {
    int id = -1;
    bool isBufferTooSmall = false;
};

/// Looks a user up with a buffer for the texts of the entry, whose suggested size is a suggestion only.
UserLookUp lookUpUser(const char* name, std::size_t bufferSize) {
    const std::unique_ptr<char[]> buffer(new (std::nothrow) char[bufferSize]);
    if (!buffer) {
        return {};
    }
    passwd user{};
    passwd* found = nullptr;
    int result = 0;
    do {
        result = getpwnam_r(name, &user, buffer.get(), bufferSize, &found);
    } while (result == EINTR);
    return {found != nullptr ? static_cast<int>(found->pw_uid) : -1, result == ERANGE};
}

bool tutorialAllowsLaunch(const TeskConsumerPlace& place = TeskConsumerPlace::here()) {
    if (!TeskConsumerUtil::getIsTutorialFinished()) {
        TESK_WARN_AT(place, "tutorial is not finished yet");
        return false;
    }
    return true;
}

} // namespace

bool TeskConsumerUtil::getIsTutorialFinished() {
    const TeskConsumerTrace trace;
    int inProgress = 0;
    const int result = vconf_get_int(TeskConsumerKeys::tutorialInProgress, &inProgress);
    if (result != 0) {
        TESK_WARN("vconf_get_int failed: [%d]", result);
        inProgress = 0;
    }
    const bool finished = inProgress == 0;
    TESK_INFO("tutorial is finished: [%d]", static_cast<int>(finished));
    return finished;
}

int TeskConsumerUtil::launchPopup() {
    TESK_INFO("Enter");
    if (!tutorialAllowsLaunch()) {
        return -1;
    }
    AppControl request = newCheckedRequest();
    if (!request) {
        return -1;
    }
    const bool sent = sendLockRequest(request);
    request.reset();
    TESK_INFO("Leave");
    return sent ? 0 : -1;
}

int TeskConsumerUtil::exitPopup() {
    AppControl request = newCheckedRequest();
    if (!request) {
        return -1;
    }
    const int result = sendWithItem(std::move(request), popupId, "OPERATION", "EXIT", popupReplied);
    TESK_INFO("Leave");
    return result;
}

int TeskConsumerUtil::launchOdePopup() {
    TESK_INFO("Enter");
    if (!tutorialAllowsLaunch()) {
        return -1;
    }
    AppControl request = newCheckedRequest();
    if (!request) {
        return -1;
    }
    const int result = sendWithItem(std::move(request), encryptionPopupId, "type", "encrypt", nullptr);
    TESK_INFO("Leave");
    return result;
}

int TeskConsumerUtil::enableOdeSetting() {
    const TeskConsumerTrace trace;
    return sendWithItem(newRequestUnchecked(), settingsId, "__OPERATION__", "__ENABLE_ENCRYPTION_MENU__", nullptr);
}

int TeskConsumerUtil::__enforcePassword() {
    TESK_INFO("Enter");
    AppControl request = newCheckedRequest();
    if (!request) {
        return -1;
    }
    const int result = sendWithItem(std::move(request), lockSettingsId, "setting_state", "eas", nullptr);
    TESK_INFO("Leave");
    return result;
}

bool TeskConsumerUtil::launchQuillonConsumer() {
    const TeskConsumerTrace trace;
    const AppControl request = newRequestUnchecked();
    app_control_set_app_id(request.get(), mailId);
    const int result = app_control_send_launch_request(request.get(), nullptr, nullptr);
    if (result != APP_CONTROL_ERROR_NONE) {
        TESK_ERROR("consumer launching fail: [%d]", result);
    }
    return result == APP_CONTROL_ERROR_NONE;
}

int TeskConsumerUtil::getUserId(const char* name) {
    if (name == nullptr) {
        return -1;
    }
    const long suggestedSize = sysconf(_SC_GETPW_R_SIZE_MAX);
    auto size = static_cast<std::size_t>(suggestedSize == -1 ? fallbackUserBufferSize : suggestedSize);
    UserLookUp lookUp;
    do {
        lookUp = lookUpUser(name, size);
        size *= 2;
    } while (lookUp.isBufferTooSmall && size <= maxUserBufferSize);
    return lookUp.id;
}
