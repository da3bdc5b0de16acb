#ifndef TESK_CONSUMER_KEYS_H
#define TESK_CONSUMER_KEYS_H

/// The device's shared keys that the service reads, writes and watches.
namespace TeskConsumerKeys {

/// int: 1 when the lock that the policies require exists. Written here, read by other applications too.
inline constexpr char passwordPolicyApplied[] = "db/eas/password_policy_applied";

/// int: 1 when the encryption that the policies require is complete.
inline constexpr char deviceEncryptionApplied[] = "db/eas/device_encryption_applied";

/// int: set to 0 when no policy requires a password.
inline constexpr char passwordInputFinished[] = "db/eas/is_pwd_input_finished";

/// int: the lock that the wearer has set; 0 none, 1 PIN.
inline constexpr char lockType[] = "db/setting/lock_type";

/// text: "unencrypted" while the device is not encrypted.
inline constexpr char cryptoState[] = "db/ode/crypto_state";

/// text: the country of the device's regional build.
inline constexpr char countryIso[] = "db/rgn/country_iso";

/// int: non-zero while the home screen's first-use tutorial runs.
inline constexpr char tutorialInProgress[] = "memory/private/com.velmor.hearth/tutorial_is_in_progress";

} // namespace TeskConsumerKeys

#endif
