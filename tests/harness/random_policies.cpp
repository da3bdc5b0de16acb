#include "random_policies.h"

namespace {

const std::vector<std::string> flagNames{"allowCamera",
                                         "allowBluetoothMode",
                                         "allowBrowser",
                                         "allowDesktopSync",
                                         "allowInternetSharing",
                                         "allowPOPIMAPEmail",
                                         "allowSimplePassword",
                                         "allowStorageCard",
                                         "allowTextMessaging",
                                         "allowWifi",
                                         "devicePasswordEnabled",
                                         "passwordRecoveryEnabled",
                                         "requireDeviceEncryption"};

const std::vector<std::string> numberNames{"devicePasswordExpiration",           "devicePasswordHistory",
                                           "minDevicePasswordComplexCharacters", "maxDevicePasswordFailedAttempts",
                                           "maxInactivityTimeDeviceLock",        "minDevicePasswordLength"};

const std::vector<std::string> flagValues{"true", "true", "true", "false", "false", "1", "null"};
const std::vector<std::string> numberValues{"0",  "0",  "1",  "2",  "3",   "4",    "5",     "6",   "8",
                                            "10", "12", "16", "50", "900", "9999", "\"4\"", "4.7", "-3"};

} // namespace

std::string RandomPolicies::message(int mostAccounts) {
    std::string entries;
    for (int count = number(0, mostAccounts); count > 0; --count) {
        entries += (entries.empty() ? "" : ",") + entry();
    }
    return R"({"msgId":"email-itpolicy-ind","seqId":1,"param":[)" + entries + "]}";
}

std::string RandomPolicies::entry() {
    const int id = number(1, 20) == 1 ? 0 : number(1, 5);
    return R"({"accountId":)" + std::to_string(id) + R"(,"accountName":"user)" + std::to_string(id) +
           R"(@example","policySet":)" + policySet() + "}";
}

std::string RandomPolicies::policySet() {
    std::string members = R"("PasswordMode":)" + oneOf<std::string>({"0", "0", "32", "64", "96"});
    for (const auto& name : flagNames) {
        members += ",\"" + name + "\":" + oneOf(flagValues);
    }
    for (const auto& name : numberNames) {
        if (number(1, 10) != 1) {
            members += ",\"" + name + "\":" + oneOf(numberValues);
        }
    }
    return "{" + members + "}";
}
