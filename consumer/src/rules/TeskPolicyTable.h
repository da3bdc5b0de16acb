#ifndef TESK_POLICY_TABLE_H
#define TESK_POLICY_TABLE_H

#include <array>
#include <cstdint>
#include <string>

#include "rules/TeskPolicyData.h"

/// How a field of several accounts becomes the one value that is enforced. The start value is that of a new record.
enum class TeskMergeRule {
    NotMerged,       ///< keeps the start value
    FirstOther,      ///< the first account that differs from the start value decides
    Largest,         ///< the largest value
    SmallestNonZero, ///< the smallest limit; 0 is no limit
    Smallest         ///< the smallest level; the start value stands for none seen yet
};

/// A number of the policy record: where it is stored and how it merges.
struct TeskPolicyNumber {
    const char* column;
    std::int32_t TeskPolicyData::*field;
    TeskMergeRule rule;
};

/// A text of the policy record. Texts are stored and never merged.
struct TeskPolicyText {
    const char* column;
    std::string TeskPolicyData::*field;
};

/// The fields of a policy in the order of the table's columns: the numbers first, the texts after them. Storing,
/// reading and merging follow these rows.
namespace TeskPolicyTable {

inline constexpr std::array<TeskPolicyNumber, 22> numbers{{
    {"account_id", &TeskPolicyData::accountId, TeskMergeRule::NotMerged},
    {"device_password_enabled", &TeskPolicyData::devicePasswordEnabled, TeskMergeRule::FirstOther},
    {"allow_simple_password", &TeskPolicyData::allowSimplePassword, TeskMergeRule::FirstOther},
    {"alphanumeric_device_password_required", &TeskPolicyData::alphanumericDevicePasswordRequired,
     TeskMergeRule::FirstOther},
    {"min_device_password_complex_characters", &TeskPolicyData::minDevicePasswordComplexCharacters,
     TeskMergeRule::Largest},
    {"min_device_password_length", &TeskPolicyData::minDevicePasswordLength, TeskMergeRule::Largest},
    {"max_device_password_failed_attempts", &TeskPolicyData::maxDevicePasswordFailedAttempts,
     TeskMergeRule::SmallestNonZero},
    {"max_inactivity_time_device_lock", &TeskPolicyData::maxInactivityTimeDeviceLock, TeskMergeRule::SmallestNonZero},
    {"password_recovery_enabled", &TeskPolicyData::passwordRecoveryEnabled, TeskMergeRule::NotMerged},
    {"device_password_expiration", &TeskPolicyData::devicePasswordExpiration, TeskMergeRule::SmallestNonZero},
    {"device_password_history", &TeskPolicyData::devicePasswordHistory, TeskMergeRule::SmallestNonZero},
    {"require_device_encryption", &TeskPolicyData::requireDeviceEncryption, TeskMergeRule::FirstOther},
    {"require_storage_card_encryption", &TeskPolicyData::requireStorageCardEncryption, TeskMergeRule::NotMerged},
    {"allow_bluetooth", &TeskPolicyData::allowBluetooth, TeskMergeRule::Smallest},
    {"allow_browser", &TeskPolicyData::allowBrowser, TeskMergeRule::NotMerged},
    {"allow_camera", &TeskPolicyData::allowCamera, TeskMergeRule::NotMerged},
    {"allow_popimap_email", &TeskPolicyData::allowPopimapEmail, TeskMergeRule::FirstOther},
    {"allow_desktop_sync", &TeskPolicyData::allowDesktopSync, TeskMergeRule::NotMerged},
    {"allow_internet_sharing", &TeskPolicyData::allowInternetSharing, TeskMergeRule::NotMerged},
    {"allow_storage_card", &TeskPolicyData::allowStorageCard, TeskMergeRule::NotMerged},
    {"allow_text_messaging", &TeskPolicyData::allowTextMessaging, TeskMergeRule::FirstOther},
    {"allow_wifi", &TeskPolicyData::allowWifi, TeskMergeRule::FirstOther},
}};

inline constexpr std::array<TeskPolicyText, 2> texts{{
    {"account_name", &TeskPolicyData::accountName},
    {"display_name", &TeskPolicyData::displayName},
}};

/// Creates the table.
const std::string& createSql();

/// Inserts a row; the parameters are the columns in order.
const std::string& insertSql();

/// Overwrites a row; the parameters are the columns in order, then the id of the row.
const std::string& updateSql();

} // namespace TeskPolicyTable

#endif
