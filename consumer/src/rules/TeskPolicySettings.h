#ifndef TESK_POLICY_SETTINGS_H
#define TESK_POLICY_SETTINGS_H

#include "rules/TeskPolicyData.h"

/// What a merged policy sets on the device, in the order in which it is written.
struct TeskPolicySettings {
    int quality = 0;           ///< 0 none, 32 numeric, 128 alphanumeric; 1 more when simple passwords are allowed
    int minLength = 0;         ///< characters
    int failedAttempts = 0;    ///< before the device is wiped; never without a limit
    int complexCharacters = 0; ///< the least number of them
    int inactivity = 0;        ///< in the sender's unit; 0: no limit
    int expiration = 0;        ///< in the sender's unit; 0: never
    int history = 0;           ///< earlier passwords that may not come back
    int wifi = 0;              ///< 0 forbids
    int messaging = 0;         ///< 0 forbids
    int popImap = 0;           ///< 0 forbids
    bool encryption = false;   ///< asked for; see needsEncryptionWrite()

    /// The settings of a policy where `countryMinLength` is the least password length.
    static TeskPolicySettings of(const TeskPolicyData& policy, int countryMinLength);

    /// The least length of a required password in a country, in characters. Null: the country is not known.
    static int countryMinLength(const char* country);

    /// Whether the text that the device keeps about its encryption says that it is encrypted. Null counts as encrypted.
    static bool isEncrypted(const char* cryptoState);

    /// Whether the demand for encryption is written: a device that is encrypted already is not asked again.
    bool needsEncryptionWrite(bool deviceIsEncrypted) const { return !encryption || !deviceIsEncrypted; }
};

#endif
