#ifndef TESK_CONSUMER_DPM_ADAPTER_H
#define TESK_CONSUMER_DPM_ADAPTER_H

#include <dpm/device-policy-manager.h>

#include "ITeskConsumerPolicyAdapter.h"

/// Forwards each operation to one function of the device policy manager. Without a handle every one of them fails with
/// the platform's error.
class TeskConsumerDpmAdapter : public ITeskConsumerPolicyAdapter {
public:
    TeskConsumerDpmAdapter();
    ~TeskConsumerDpmAdapter() override;

    TeskConsumerDpmAdapter(const TeskConsumerDpmAdapter&) = delete;
    TeskConsumerDpmAdapter& operator=(const TeskConsumerDpmAdapter&) = delete;

    int registerClient() override;
    int deregisterClient() override;
    int setPasswordQuality(int quality) override;
    int getPasswordQuality(int* quality) override;
    int setPasswordMinLength(int length) override;
    int getPasswordMinLength(int* length) override;
    int setPasswordMaxFailedAttempts(int count) override;
    int getPasswordMaxFailedAttempts(int* count) override;
    int setPasswordMinComplexCharacters(int count) override;
    int getPasswordMinComplexCharacters(int* count) override;
    int setPasswordMaxInactivityTimeDeviceLock(int value) override;
    int getPasswordMaxInactivityTimeDeviceLock(int* value) override;
    int setPasswordExpires(int value) override;
    int getPasswordExpires(int* value) override;
    int setPasswordHistory(int value) override;
    int getPasswordHistory(int* value) override;
    int setRestrictionWifi(int allow) override;
    int getRestrictionWifi(int* allow) override;
    int setRestrictionMessaging(const char* sim, int allow) override;
    int getRestrictionMessaging(const char* sim, int* allow) override;
    int setRestrictionPopImap(int allow) override;
    int getRestrictionPopImap(int* allow) override;
    int setSecurityInternalStorageEncryption(bool encrypt) override;
    int isSecurityInternalStorageEncrypted(int* state) override;
    int setSecurityExternalStorageEncryption(bool encrypt) override;
    int isSecurityExternalStorageEncrypted(int* state) override;
    int wipeInternalStorage() override;
    int wipeExternalStorage() override;

private:
    device_policy_manager_h handle;
};

#endif
