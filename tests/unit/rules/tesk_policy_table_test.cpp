#include <gtest/gtest.h>

#include "rules/TeskPolicyTable.h"

namespace {

// Other programs of the device read this table, so its texts are compared to the letter.
const char createText[] = "CREATE TABLE eas_policy_tbl \n( \n"
                          "\taccount_id                             INTEGER, \n"
                          "\tdevice_password_enabled                INTEGER, \n"
                          "\tallow_simple_password                  INTEGER, \n"
                          "\talphanumeric_device_password_required  INTEGER, \n"
                          "\tmin_device_password_complex_characters INTEGER, \n"
                          "\tmin_device_password_length             INTEGER, \n"
                          "\tmax_device_password_failed_attempts    INTEGER, \n"
                          "\tmax_inactivity_time_device_lock        INTEGER, \n"
                          "\tpassword_recovery_enabled              INTEGER, \n"
                          "\tdevice_password_expiration             INTEGER, \n"
                          "\tdevice_password_history                INTEGER, \n"
                          "\trequire_device_encryption              INTEGER, \n"
                          "\trequire_storage_card_encryption        INTEGER, \n"
                          "\tallow_bluetooth                        INTEGER, \n"
                          "\tallow_browser                          INTEGER, \n"
                          "\tallow_camera                           INTEGER, \n"
                          "\tallow_popimap_email                    INTEGER, \n"
                          "\tallow_desktop_sync                     INTEGER, \n"
                          "\tallow_internet_sharing                 INTEGER, \n"
                          "\tallow_storage_card                     INTEGER, \n"
                          "\tallow_text_messaging                   INTEGER, \n"
                          "\tallow_wifi                             INTEGER, \n"
                          "\taccount_name                           TEXT, \n"
                          "\tdisplay_name                           TEXT, \n"
                          "\tuser_int1                              INTEGER, \n"
                          "\tuser_int2                              INTEGER, \n"
                          "\tuser_int3                              INTEGER, \n"
                          "\tuser_str1                              TEXT, \n"
                          "\tuser_str2                              TEXT, \n"
                          "\tuser_str3                              TEXT, \n"
                          "\tPRIMARY KEY(account_id) \n);";

const char insertText[] =
    "insert into eas_policy_tbl (account_id, device_password_enabled, allow_simple_password, "
    "alphanumeric_device_password_required, min_device_password_complex_characters,  min_device_password_length, "
    "max_device_password_failed_attempts, max_inactivity_time_device_lock, password_recovery_enabled, "
    "device_password_expiration,  device_password_history, require_device_encryption, require_storage_card_encryption, "
    "allow_bluetooth, allow_browser,  allow_camera, allow_popimap_email, allow_desktop_sync, allow_internet_sharing, "
    "allow_storage_card,  allow_text_messaging, allow_wifi, account_name, display_name) values (?, ?, ?, ?, ?, ?, ?, "
    "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?);";

const char updateText[] =
    "update eas_policy_tbl set account_id=?, device_password_enabled=?, allow_simple_password=?, "
    "alphanumeric_device_password_required=?, min_device_password_complex_characters=?,  "
    "min_device_password_length=?, max_device_password_failed_attempts=?, max_inactivity_time_device_lock=?, "
    "password_recovery_enabled=?, device_password_expiration=?,  device_password_history=?, "
    "require_device_encryption=?, require_storage_card_encryption=?, allow_bluetooth=?, allow_browser=?,  "
    "allow_camera=?, allow_popimap_email=?, allow_desktop_sync=?, allow_internet_sharing=?, allow_storage_card=?,  "
    "allow_text_messaging=?, allow_wifi=?, account_name=?, display_name=?  where account_id=?;";

TEST(PolicyTable, CreateTextIsExact) {
    EXPECT_EQ(TeskPolicyTable::createSql(), createText);
}

TEST(PolicyTable, InsertTextIsExact) {
    EXPECT_EQ(TeskPolicyTable::insertSql(), insertText);
}

TEST(PolicyTable, UpdateTextIsExact) {
    EXPECT_EQ(TeskPolicyTable::updateSql(), updateText);
}

} // namespace
