#ifndef I_TESK_CONSUMER_POLICY_ADAPTER_H
#define I_TESK_CONSUMER_POLICY_ADAPTER_H

/// The one way to the device's policies. Every operation returns 0 or the platform's negative error unchanged; getters
/// write to their argument only on success.
class ITeskConsumerPolicyAdapter {
public:
    ITeskConsumerPolicyAdapter() = default;
    virtual ~ITeskConsumerPolicyAdapter() = default;

    ITeskConsumerPolicyAdapter(const ITeskConsumerPolicyAdapter&) = delete;
    ITeskConsumerPolicyAdapter& operator=(const ITeskConsumerPolicyAdapter&) = delete;

    /// Makes this service an administrator of the device, or ends that.
    virtual int registerClient() = 0;
    virtual int deregisterClient() = 0;

    /// 0 none, 32 numeric, 128 alphanumeric; 1 more when simple passwords are allowed.
    virtual int setPasswordQuality(int quality) = 0;
    virtual int getPasswordQuality(int* quality) = 0;

    /// Characters.
    virtual int setPasswordMinLength(int length) = 0;
    virtual int getPasswordMinLength(int* length) = 0;

    /// Wrong attempts before the device wipes itself.
    virtual int setPasswordMaxFailedAttempts(int count) = 0;
    virtual int getPasswordMaxFailedAttempts(int* count) = 0;

    virtual int setPasswordMinComplexCharacters(int count) = 0;
    virtual int getPasswordMinComplexCharacters(int* count) = 0;

    virtual int setPasswordMaxInactivityTimeDeviceLock(int value) = 0;
    virtual int getPasswordMaxInactivityTimeDeviceLock(int* value) = 0;

    virtual int setPasswordExpires(int value) = 0;
    virtual int getPasswordExpires(int* value) = 0;

    virtual int setPasswordHistory(int value) = 0;
    virtual int getPasswordHistory(int* value) = 0;

    /// 1 allowed, 0 forbidden.
    virtual int setRestrictionWifi(int allow) = 0;
    virtual int getRestrictionWifi(int* allow) = 0;

    /// Text messages of one SIM, or of all of them for "*".
    virtual int setRestrictionMessaging(const char* sim, int allow) = 0;
    virtual int getRestrictionMessaging(const char* sim, int* allow) = 0;

    virtual int setRestrictionPopImap(int allow) = 0;
    virtual int getRestrictionPopImap(int* allow) = 0;

    /// Demands that a storage is encrypted; the getters tell whether it is.
    virtual int setSecurityInternalStorageEncryption(bool encrypt) = 0;
    virtual int isSecurityInternalStorageEncrypted(int* state) = 0;
    virtual int setSecurityExternalStorageEncryption(bool encrypt) = 0;
    virtual int isSecurityExternalStorageEncrypted(int* state) = 0;

    /// Erases a storage at once.
    virtual int wipeInternalStorage() = 0;
    virtual int wipeExternalStorage() = 0;
};

#endif
