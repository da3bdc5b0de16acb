#include "provisioning/provisioning_import.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>

#include "program.h"
#include "temporary_folder.h"

namespace deskwatch {
namespace {

using Json = nlohmann::json;

std::vector<ProvisioningElement> document(const std::vector<std::pair<std::string, std::string>>& values) {
    std::vector<ProvisioningElement> elements;
    elements.reserve(values.size());
    for (const auto& [name, value] : values) {
        elements.push_back({name, value, false, static_cast<long>(elements.size()) + 1});
    }
    return elements;
}

ProvisioningImport import(const std::vector<std::pair<std::string, std::string>>& values, bool keepsLimits = false) {
    return importProvisioning("p.xml", document(values), {1, "alice@contoso.example", keepsLimits});
}

Json policySet(const ProvisioningImport& import) {
    return Json::parse(import.message)["param"][0]["policySet"];
}

std::string refusal(const std::vector<std::pair<std::string, std::string>>& values) {
    try {
        import(values);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

Json readJson(const std::string& file) {
    std::ifstream stream(file);
    return Json::parse(stream);
}

std::string sample(const std::string& name) {
    return std::string(SAMPLES) + "/" + name;
}

TEST(ProvisioningImport, EmptyDocumentRestrictsNothing) {
    EXPECT_EQ(policySet(import({})), readJson(sample("exchange-default.json"))["param"][0]["policySet"]);
}

TEST(ProvisioningImport, EmptyElementsMeanWhatAbsentOnesDo) {
    EXPECT_EQ(policySet(import({{"AllowWifi", ""}, {"AllowBluetooth", ""}, {"DevicePasswordEnabled", ""}})),
              policySet(import({})));
}

TEST(ProvisioningImport, HardenedSampleIsTheHardenedPolicy) {
    const auto outcome =
        deskwatchProgram({"import", sample("provision-hardened.xml"), "--account", "2", "--name", "bob@bank.example"});
    const auto expected = readJson(sample("hardened.json"));
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(Json::parse(outcome.output)["param"], expected["param"]);
    EXPECT_EQ(Json::parse(outcome.output)["msgId"], "email-itpolicy-ind");
}

TEST(ProvisioningImport, LimitsWithoutAPasswordAreIgnored) {
    const std::vector<std::pair<std::string, std::string>> limits{{"MaxDevicePasswordFailedAttempts", "8"},
                                                                  {"AllowSimpleDevicePassword", "0"}};
    EXPECT_EQ(policySet(import(limits)), policySet(import({})));
    EXPECT_EQ(import(limits).elements[0].remark, "ignored, because the document requires no password");
    EXPECT_EQ(policySet(import(limits, true))["maxDevicePasswordFailedAttempts"], 8);
    EXPECT_EQ(policySet(import(limits, true))["allowSimplePassword"], false);
}

TEST(ProvisioningImport, BluetoothLevelsArriveAsAFlag) {
    EXPECT_EQ(policySet(import({{"AllowBluetooth", "0"}}))["allowBluetoothMode"], false);
    EXPECT_EQ(policySet(import({{"AllowBluetooth", "1"}}))["allowBluetoothMode"], true);
    EXPECT_EQ(policySet(import({{"AllowBluetooth", "2"}}))["allowBluetoothMode"], true);
}

TEST(ProvisioningImport, InactivityIsTakenAsItStands) {
    const auto set = policySet(import({{"DevicePasswordEnabled", "1"}, {"MaxInactivityTimeDeviceLock", "9999"}}));
    EXPECT_EQ(set["maxInactivityTimeDeviceLock"], 9999);
}

TEST(ProvisioningImport, FateOfEachElementIsTold) {
    const auto elements = import({{"AllowWifi", "0"},
                                  {"AllowCamera", "0"},
                                  {"RequireStorageCardEncryption", "1"},
                                  {"AllowIrDA", "0"},
                                  {"AllowTeleport", "0"}})
                              .elements;
    EXPECT_EQ(elements[0].support, Support::Enforced);
    EXPECT_EQ(elements[0].carried, "false");
    EXPECT_EQ(elements[1].support, Support::Stored);
    EXPECT_EQ(elements[2].support, Support::NotDeliverable);
    EXPECT_EQ(elements[2].member, "");
    EXPECT_EQ(elements[3].support, Support::NotThere);
    EXPECT_EQ(elements[3].remark, "");
    EXPECT_EQ(elements[4].remark, "not an element of a provisioning document");
    EXPECT_EQ(import({{"AllowWiFi", "0"}}).elements[0].remark,
              "not an element of a provisioning document; did you mean \"AllowWifi\"?");
}

TEST(ProvisioningImport, SummaryAndLinesTellTheSameOfWhatThePolicyDemands) {
    const auto report = importText("p.xml", import({{"DevicePasswordEnabled", "1"},
                                                    {"AllowWifi", "1"},
                                                    {"AllowCamera", "0"},
                                                    {"MinDevicePasswordComplexCharacters", "3"},
                                                    {"RequireStorageCardEncryption", "1"},
                                                    {"AllowHTMLEmail", "1"},
                                                    {"MaxAttachmentSize", "-1"},
                                                    {"MaxEmailAgeFilter", "2"},
                                                    {"AllowTeleport", "0"},
                                                    {"AllowBluetooth", "1"},
                                                    {"{urn:x}Other", "0"}}));
    EXPECT_EQ(
        report,
        "p.xml: enforced: DevicePasswordEnabled 1\n"
        "p.xml: only stored: AllowCamera 0, MinDevicePasswordComplexCharacters 3\n"
        "p.xml: lost: RequireStorageCardEncryption 1, MaxEmailAgeFilter 2, AllowTeleport 0, AllowBluetooth 1\n"
        "p.xml:1: DevicePasswordEnabled 1: enforced, devicePasswordEnabled true\n"
        "p.xml:2: AllowWifi 1: restricts nothing, allowWifi true\n"
        "p.xml:3: AllowCamera 0: only stored, allowCamera false\n"
        "p.xml:4: MinDevicePasswordComplexCharacters 3: only stored, minDevicePasswordComplexCharacters 3; counts "
        "only when the password must be alphanumeric\n"
        "p.xml:5: RequireStorageCardEncryption 1: lost: no message carries it\n"
        "p.xml:6: AllowHTMLEmail 1: restricts nothing\n"
        "p.xml:7: MaxAttachmentSize -1: restricts nothing\n"
        "p.xml:8: MaxEmailAgeFilter 2: lost, unless the mail application sees to it\n"
        "p.xml:9: AllowTeleport 0: lost: unknown to the watch; not an element of a provisioning document\n"
        "p.xml:10: AllowBluetooth 1: lost, allowBluetoothMode true; hands-free only (1) and allowed (2) are sent "
        "as the same value\n"
        "p.xml:11: {urn:x}Other 0: restricts nothing; an element of another namespace\n");
    EXPECT_EQ(importText("p.xml", import({})),
              "p.xml: enforced: nothing\np.xml: only stored: nothing\np.xml: lost: nothing\n");
}

TEST(ProvisioningImport, RemarksAreMadeWhereTheValueMakesThemTrue) {
    struct Row {
        const char* element;
        const char* value;
        const char* remark;
    };
    for (const Row& row :
         {Row{"AllowBluetooth", "1", "hands-free only (1) and allowed (2) are sent as the same value"},
          Row{"AllowBluetooth", "2", ""},
          Row{"MinDevicePasswordLength", "5", "at least 4 (6 in Korea) when a password is required"},
          Row{"MinDevicePasswordLength", "6", ""}, Row{"MaxInactivityTimeDeviceLock", "9998", ""},
          Row{"MaxInactivityTimeDeviceLock", "9999",
              "9999 seconds and more, no limit in the protocol, are taken literally"},
          Row{"MaxDevicePasswordFailedAttempts", "4", ""},
          Row{"MaxDevicePasswordFailedAttempts", "", "empty, treated as absent; without a limit the watch allows 10"},
          Row{"MinDevicePasswordComplexCharacters", "2", "counts only when the password must be alphanumeric"}}) {
        EXPECT_EQ(import({{row.element, row.value}, {"DevicePasswordEnabled", "1"}}).elements[0].remark, row.remark)
            << row.element << " " << row.value;
    }
    EXPECT_EQ(import({{"MinDevicePasswordComplexCharacters", "2"},
                      {"AlphanumericDevicePasswordRequired", "1"},
                      {"DevicePasswordEnabled", "1"}})
                  .elements[0]
                  .remark,
              "");
}

TEST(ProvisioningImport, OrderIsToldWithAPolicyAndWithout) {
    const TemporaryFolder folder;
    const auto file = (folder.path() / "p.xml").string();
    const std::string order = "<Provision><RemoteWipe/>";
    std::ofstream(file) << order << "<EASProvisionDoc/></Provision>";
    const auto both = deskwatchProgram({"import", file});
    EXPECT_EQ(both.status, 0);
    const std::string told = file + ":1: the server orders to wipe the watch (RemoteWipe), whatever policy it sends\n";
    EXPECT_EQ(both.errors.find("warning: " + told), 0U) << both.errors;
    std::ofstream(file) << order << "</Provision>";
    const auto alone = deskwatchProgram({"import", file});
    EXPECT_EQ(alone.status, 1);
    EXPECT_EQ(alone.errors, "deskwatch: import: " + file + " brings no policy\n" + told);
}

TEST(ProvisioningImport, ValuesOutsideTheirBoundsAreRefusedAtBothEnds) {
    const std::map<std::string, std::pair<int, int>> bounds{{"DevicePasswordEnabled", {0, 1}},
                                                            {"AlphanumericDevicePasswordRequired", {0, 1}},
                                                            {"MinDevicePasswordLength", {1, 16}},
                                                            {"MinDevicePasswordComplexCharacters", {1, 4}},
                                                            {"MaxDevicePasswordFailedAttempts", {4, 16}},
                                                            {"DevicePasswordExpiration", {0, 730}},
                                                            {"DevicePasswordHistory", {0, 50}},
                                                            {"AllowBluetooth", {0, 2}},
                                                            {"AllowWifi", {0, 1}},
                                                            {"RequireStorageCardEncryption", {0, 1}}};
    for (const auto& [name, range] : bounds) {
        EXPECT_EQ(refusal({{name, std::to_string(range.first)}}), "") << name;
        EXPECT_EQ(refusal({{name, std::to_string(range.second)}}), "") << name;
        EXPECT_NE(refusal({{name, std::to_string(range.first - 1)}}), "") << name;
        EXPECT_NE(refusal({{name, std::to_string(range.second + 1)}}), "") << name;
    }
}

TEST(ProvisioningImport, EveryIllegalValueIsNamedWithItsLine) {
    EXPECT_EQ(refusal({{"AllowWifi", "yes"}, {"AllowCamera", "1"}, {"MinDevicePasswordLength", "40"}}),
              "p.xml:1: AllowWifi is \"yes\"; it must be 0 or 1\n"
              "p.xml:3: MinDevicePasswordLength is \"40\"; it must be a number from 1 to 16");
    EXPECT_EQ(
        refusal({{"MinDevicePasswordLength", "0"}}),
        "p.xml:1: MinDevicePasswordLength is \"0\"; it must be a number from 1 to 16; for no limit leave it empty");
    EXPECT_EQ(refusal({{"MaxInactivityTimeDeviceLock", "99999999999"}}),
              "p.xml:1: MaxInactivityTimeDeviceLock is \"99999999999\"; it must be a number of seconds, up to "
              "2147483647");
    EXPECT_NE(refusal({{"AllowWifi", "0x1"}}), "");
    EXPECT_NE(refusal({{"AllowWifi", "-0"}}), "");
    for (const char* const noLimit : {"Unlimited", "None", "Never"}) {
        const auto told = refusal({{"DevicePasswordExpiration", noLimit}});
        EXPECT_NE(told.find("730; for no limit leave it empty"), std::string::npos) << told;
    }
    EXPECT_EQ(
        refusal({{"MaxDevicePasswordFailedAttempts", "unlimited"}}),
        "p.xml:1: MaxDevicePasswordFailedAttempts is \"unlimited\"; it must be a number from 4 to 16; for no limit "
        "leave it empty");
}

TEST(ProvisioningImport, ElementThatIsGivenTwiceIsRefused) {
    EXPECT_EQ(refusal({{"AllowWifi", "1"}, {"AllowWifi", "1"}}),
              "p.xml:2: AllowWifi is a duplicate of the one in line 1");
}

TEST(ProvisioningImport, LineThatNobodyKnowsIsNotNamed) {
    const std::vector<ProvisioningElement> twice(2, {"AllowWifi", "1", false, 0});
    try {
        importProvisioning("p", twice, {});
        FAIL();
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "p: AllowWifi is a duplicate");
    }
}

TEST(ProvisioningImport, IllegalDocumentLeavesNoMessage) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "bad.xml";
    const auto output = folder.path() / "message.json";
    std::ofstream(file) << "<EASProvisionDoc>\n<AllowWifi>2</AllowWifi></EASProvisionDoc>";

    const auto outcome = deskwatchProgram({"import", file.string(), "-o", output.string()});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors, "deskwatch: import: " + file.string() + ":2: AllowWifi is \"2\"; it must be 0 or 1\n");
    EXPECT_FALSE(std::filesystem::exists(output));
}

TEST(ProvisioningImport, MessageGoesToAFileAndTheReportToStandardError) {
    const TemporaryFolder folder;
    const auto output = folder.path() / "message.json";
    const auto file = sample("provision-limits-without-password.xml");

    const auto outcome = deskwatchProgram({"import", file, "-o", output.string(), "--json", "--keep-limits"});

    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(readJson(output)["param"][0]["policySet"],
              readJson(sample("open-source-server.json"))["param"][0]["policySet"]);
    const auto report = Json::parse(outcome.errors);
    ASSERT_EQ(report["elements"].size(), 7U);
    EXPECT_EQ(report["elements"][5], Json::parse(R"({"line": 16, "element": "AllowBluetooth", "value": "1",
        "watch": "lost", "member": "allowBluetoothMode", "carried": true,
        "remark": "hands-free only (1) and allowed (2) are sent as the same value"})"));
    EXPECT_EQ(report["elements"][6]["watch"], "lost: no message carries it");
}

} // namespace
} // namespace deskwatch
