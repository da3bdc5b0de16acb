#include "accounts/compliance.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

struct Row {
    const char* what;
    ComplianceFacts facts;
    /// 0 while the wearer has to act.
    int told;
};

ComplianceFacts policyOf(const std::vector<std::pair<std::string, std::string>>& elements) {
    ComplianceFacts facts;
    for (const auto& [name, value] : elements) {
        facts.elements.push_back({name, value, value == "list", 0});
    }
    return facts;
}

ComplianceFacts withLock(const char* password, bool isLockMissing, bool isStopped) {
    auto facts = policyOf({{"DevicePasswordEnabled", password}});
    facts.isLockMissing = isLockMissing;
    facts.isSynchronisationStopped = isStopped;
    return facts;
}

ComplianceFacts withEncryption(const char* required, bool isMissing) {
    auto facts = policyOf({{"RequireDeviceEncryption", required}});
    facts.isEncryptionMissing = isMissing;
    return facts;
}

/// One setting holds another value than the service wrote.
ComplianceFacts withHeld(std::size_t setting, std::optional<int> held) {
    auto facts = withLock("1", true, true);
    facts.written.at(setting) = 6;
    facts.held.at(setting) = held;
    return facts;
}

TEST(Compliance, ServerIsToldWhatTheWatchDid) {
    const Row rows[] = {
        {"nothing is demanded", policyOf({}), 1},
        {"the lock is there", withLock("1", false, false), 1},
        {"the lock is missing", withLock("1", true, false), 0},
        {"the lock is missing for another account", withLock("0", true, false), 1},
        {"the wearer stops synchronising", withLock("1", true, true), 3},
        {"the wearer stops synchronising for another account", withLock("0", true, true), 1},
        {"encryption is missing", withEncryption("1", true), 0},
        {"encryption is done", withEncryption("1", false), 1},
        {"encryption is missing for another account", withEncryption("0", true), 1},
        {"a password setting is held", withHeld(1, 6), 3},
        {"a password setting differs", withHeld(1, 4), 4},
        {"the last password setting differs", withHeld(6, 4), 4},
        {"a password setting cannot be read", withHeld(1, std::nullopt), 3},
        {"the camera is allowed", policyOf({{"AllowCamera", "1"}}), 1},
        {"hands-free Bluetooth alone is allowed", policyOf({{"AllowBluetooth", "1"}}), 2},
        {"Bluetooth is allowed", policyOf({{"AllowBluetooth", "2"}}), 1},
        {"an element is empty", policyOf({{"AllowCamera", ""}}), 1},
        {"password recovery is offered", policyOf({{"PasswordRecoveryEnabled", "1"}}), 1},
        {"the storage card must be encrypted", policyOf({{"RequireStorageCardEncryption", "1"}}), 2},
        {"a list of applications is empty", policyOf({{"ApprovedApplicationList", ""}}), 1},
        {"Wi-Fi is forbidden", policyOf({{"AllowWifi", "0"}}), 1},
    };
    for (const auto& row : rows) {
        const auto verdict = verdictOf(row.facts);
        EXPECT_EQ(verdict ? static_cast<int>(verdict->compliance) : 0, row.told) << row.what;
        EXPECT_EQ(verdict && verdict->reasons.empty(), row.told == 1) << row.what;
    }
    for (const auto* const stored : {"AllowCamera", "AllowBluetooth", "AllowBrowser", "AllowDesktopSync",
                                     "AllowInternetSharing", "AllowStorageCard"}) {
        EXPECT_EQ(verdictOf(policyOf({{stored, "0"}}))->compliance, Compliance::Partly) << stored;
    }
    for (const auto* const list : {"ApprovedApplicationList", "UnapprovedInROMApplicationList"}) {
        EXPECT_EQ(verdictOf(policyOf({{list, "list"}}))->compliance, Compliance::Partly) << list;
    }
    for (const auto* const other :
         {"AllowConsumerEmail", "AllowHTMLEmail", "AllowIrDA", "AllowRemoteDesktop", "AllowSMIMESoftCerts",
          "AllowUnsignedApplications", "AllowUnsignedInstallationPackages", "AttachmentsEnabled",
          "RequireManualSyncWhenRoaming", "RequireSignedSMIMEMessages", "RequireEncryptedSMIMEMessages",
          "AllowSMIMEEncryptionAlgorithmNegotiation", "RequireSignedSMIMEAlgorithm", "RequireEncryptionSMIMEAlgorithm",
          "MaxAttachmentSize", "MaxCalendarAgeFilter", "MaxEmailAgeFilter", "MaxEmailBodyTruncationSize",
          "MaxEmailHTMLBodyTruncationSize"}) {
        EXPECT_EQ(verdictOf(policyOf({{other, "0"}}))->compliance, Compliance::Applied) << other;
    }
    auto restriction = policyOf({});
    restriction.written.at(7) = 0;
    restriction.held.at(7) = 1;
    EXPECT_EQ(verdictOf(restriction)->compliance, Compliance::Partly);
}

} // namespace
} // namespace deskwatch
