// Written by script/protocol from docs/protocol.json.
#ifndef DESKWATCH_POLICY_NAMES_H
#define DESKWATCH_POLICY_NAMES_H

#include <array>

#include "policy_files/policy_setting.h"

namespace deskwatch {

/// Every element of a policy and what administrators call it.
inline constexpr std::array<PolicyName, 42> policyNames{{
    {"AlphanumericDevicePasswordRequired", "AlphanumericPasswordRequired", "alphanumpwreq", "", TimeUnit::None},
    {"AllowCamera", "AllowCamera", "allowcam", "", TimeUnit::None},
    {"AllowBluetooth", "AllowBluetooth", "allowbluetooth", "", TimeUnit::None},
    {"AllowBrowser", "AllowBrowser", "allowbrowser", "", TimeUnit::None},
    {"AllowDesktopSync", "AllowDesktopSync", "allowdesktopsync", "", TimeUnit::None},
    {"AllowInternetSharing", "AllowInternetSharing", "allowinternetsharing", "", TimeUnit::None},
    {"AllowPOPIMAPEmail", "AllowPOPIMAPEmail", "allowpopimapemail", "", TimeUnit::None},
    {"AllowSimpleDevicePassword", "AllowSimplePassword", "allowsimpledevpw", "", TimeUnit::None},
    {"AllowStorageCard", "AllowStorageCard", "allowstoragecard", "", TimeUnit::None},
    {"AllowTextMessaging", "AllowTextMessaging", "allowtextmessaging", "", TimeUnit::None},
    {"AllowWifi", "AllowWiFi", "allowwifi", "", TimeUnit::None},
    {"DevicePasswordEnabled", "PasswordEnabled", "devpwenabled", "", TimeUnit::None},
    {"DevicePasswordExpiration", "PasswordExpiration", "devpwexpiration", "", TimeUnit::Days},
    {"DevicePasswordHistory", "PasswordHistory", "devpwhistory", "", TimeUnit::None},
    {"MinDevicePasswordComplexCharacters", "MinPasswordComplexCharacters", "mindevcomplexchars", "", TimeUnit::None},
    {"MaxDevicePasswordFailedAttempts", "MaxPasswordFailedAttempts", "maxdevpwfailedattempts", "", TimeUnit::None},
    {"MaxInactivityTimeDeviceLock", "MaxInactivityTimeLock", "maxinacttimedevlock", "", TimeUnit::Seconds},
    {"MinDevicePasswordLength", "MinPasswordLength", "mindevpwlenngth", "", TimeUnit::None},
    {"PasswordRecoveryEnabled", "PasswordRecoveryEnabled", "pwrecoveryenabled", "", TimeUnit::None},
    {"RequireDeviceEncryption", "RequireDeviceEncryption", "reqdevenc", "", TimeUnit::None},
    {"RequireStorageCardEncryption", "RequireStorageCardEncryption", "devencenabled", "reqstoragecardenc",
     TimeUnit::None},
    {"AllowConsumerEmail", "AllowConsumerEmail", "allowconsumeremail", "", TimeUnit::None},
    {"AllowHTMLEmail", "AllowHTMLEmail", "allowhtmlemail", "", TimeUnit::None},
    {"AllowIrDA", "AllowIrDA", "allowirda", "", TimeUnit::None},
    {"AllowRemoteDesktop", "AllowRemoteDesktop", "allowremotedesk", "", TimeUnit::None},
    {"AllowSMIMESoftCerts", "AllowSMIMESoftCerts", "allowsmimesoftcerts", "", TimeUnit::None},
    {"AllowUnsignedApplications", "AllowUnsignedApplications", "allowunsignedapps", "", TimeUnit::None},
    {"AllowUnsignedInstallationPackages", "AllowUnsignedInstallationPackages", "allowunsigninstallpacks", "",
     TimeUnit::None},
    {"AttachmentsEnabled", "AttachmentsEnabled", "attenabled", "", TimeUnit::None},
    {"RequireManualSyncWhenRoaming", "RequireManualSyncWhenRoaming", "reqmansyncroam", "", TimeUnit::None},
    {"RequireSignedSMIMEMessages", "RequireSignedSMIMEMessages", "reqsignedsmimemessages", "", TimeUnit::None},
    {"RequireEncryptedSMIMEMessages", "RequireEncryptedSMIMEMessages", "reqencsmimemessages", "", TimeUnit::None},
    {"AllowSMIMEEncryptionAlgorithmNegotiation", "AllowSMIMEEncryptionAlgorithmNegotiation", "allowsmimeencalgneg", "",
     TimeUnit::None},
    {"RequireSignedSMIMEAlgorithm", "RequireSignedSMIMEAlgorithm", "reqsignedsmimealgorithm", "", TimeUnit::None},
    {"RequireEncryptionSMIMEAlgorithm", "RequireEncryptionSMIMEAlgorithm", "reqencsmimealgorithm", "", TimeUnit::None},
    {"MaxAttachmentSize", "MaxAttachmentSize", "maxattsize", "", TimeUnit::None},
    {"MaxCalendarAgeFilter", "MaxCalendarAgeFilter", "maxcalagefilter", "", TimeUnit::None},
    {"MaxEmailAgeFilter", "MaxEmailAgeFilter", "maxemailagefilter", "", TimeUnit::None},
    {"MaxEmailBodyTruncationSize", "MaxEmailBodyTruncationSize", "maxemailbodytruncsize", "", TimeUnit::None},
    {"MaxEmailHTMLBodyTruncationSize", "MaxEmailHTMLBodyTruncationSize", "maxemailhtmlbodytruncsize", "",
     TimeUnit::None},
    {"ApprovedApplicationList", "ApprovedApplicationList", "approvedapplist", "", TimeUnit::None},
    {"UnapprovedInROMApplicationList", "UnapprovedInROMApplicationList", "unapprovedinromapplist", "", TimeUnit::None},
}};

/// The words for an element's numbers.
inline constexpr std::array<ValueWord, 29> valueWords{{
    {"True", "1"},
    {"False", "0"},
    {"on", "1"},
    {"off", "0"},
    {"yes", "1"},
    {"no", "0"},
    {"null", ""},
    {"Unlimited", ""},
    {"Disable", "0"},
    {"HandsfreeOnly", "1"},
    {"Allow", "2"},
    {"All", "0"},
    {"OneDay", "1"},
    {"ThreeDays", "2"},
    {"OneWeek", "3"},
    {"TwoWeeks", "4"},
    {"OneMonth", "5"},
    {"ThreeMonths", "6"},
    {"SixMonths", "7"},
    {"SHA1", "0"},
    {"MD5", "1"},
    {"TripleDES", "0"},
    {"DES", "1"},
    {"RC2128bit", "2"},
    {"RC264bit", "3"},
    {"RC240bit", "4"},
    {"BlockNegotiation", "0"},
    {"OnlyStrongAlgorithmNegotiation", "1"},
    {"AllowAnyAlgorithmNegotiation", "2"},
}};

/// What servers keep beside a policy and do not send.
inline constexpr std::array<const char*, 16> notSent{"AllowNonProvisionableDevices",
                                                     "DevicePolicyRefreshInterval",
                                                     "AllowExternalDeviceManagement",
                                                     "AllowMobileOTAUpdate",
                                                     "MobileOTAUpdateMode",
                                                     "IrmEnabled",
                                                     "UNCAccessEnabled",
                                                     "WSSAccessEnabled",
                                                     "AllowApplePushNotifications",
                                                     "AllowGooglePushNotifications",
                                                     "AllowMicrosoftPushNotifications",
                                                     "IsDefault",
                                                     "IsDefaultPolicy",
                                                     "Name",
                                                     "Identity",
                                                     "docbrowseenabled"};

} // namespace deskwatch

#endif
