#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>

#include "comparison/policy_comparison.h"
#include "program.h"

namespace deskwatch {
namespace {

using Json = nlohmann::json;
using Elements = std::vector<std::pair<std::string, std::string>>;

std::string samplePath(const std::string& name) {
    return std::string(SAMPLES) + "/" + name;
}

ComparedPolicy policyToCompare(const Elements& values) {
    std::vector<ProvisioningElement> elements;
    for (const auto& [name, value] : values) {
        elements.push_back({name, value, value == "list", 0});
    }
    return {"p", "", false, importProvisioning("p", elements, {1, "a", true})};
}

/// Whose value of an element counts on a watch with both; the other order of the policies must be of the same mind.
Side decides(const std::string& element, const std::string& first, const std::string& second) {
    const auto sideIn = [](const PolicyComparison& comparison) {
        auto side = Side::None;
        for (const auto& member : comparison.members) {
            side = member.decides != Side::None ? member.decides : side;
        }
        return side;
    };
    const auto one = policyToCompare({{element, first}});
    const auto other = policyToCompare({{element, second}});
    const auto side = sideIn(comparePolicies(one, other));
    const auto opposite = side == Side::None ? Side::None : side == Side::First ? Side::Second : Side::First;
    EXPECT_EQ(sideIn(comparePolicies(other, one)), opposite) << element;
    return side;
}

TEST(PolicyComparison, MergeOfTheServiceDecides) {
    EXPECT_EQ(decides("MinDevicePasswordLength", "4", "8"), Side::Second);
    EXPECT_EQ(decides("MaxDevicePasswordFailedAttempts", "", "16"), Side::Second) << "no limit never counts";
    EXPECT_EQ(decides("DevicePasswordHistory", "4", "10"), Side::First) << "the smaller history";
    EXPECT_EQ(decides("AllowWifi", "0", "1"), Side::First);
    EXPECT_EQ(decides("AlphanumericDevicePasswordRequired", "0", "1"), Side::Second);
    EXPECT_EQ(decides("AllowCamera", "0", "1"), Side::None) << "cameras are not merged";
    EXPECT_EQ(decides("AllowBluetooth", "0", "2"), Side::None) << "merged, and not enforced";
}

TEST(PolicyComparison, WhatNoMessageCarriesIsComparedWhereItDemands) {
    const auto first =
        policyToCompare({{"RequireStorageCardEncryption", "1"}, {"AllowIrDA", "1"}, {"MaxEmailAgeFilter", "2"}});
    const auto second = policyToCompare({{"ApprovedApplicationList", "list"}, {"MaxEmailAgeFilter", "2"}});
    const auto comparison = comparePolicies(first, second);
    ASSERT_EQ(comparison.notCarried.size(), 3U);
    EXPECT_EQ(comparison.notCarried[0].values[1], "");
    EXPECT_FALSE(comparison.notCarried[1].isDifferent());
    EXPECT_EQ(comparison.differences(), 2U);
    auto message = second;
    message.isMessage = true;
    EXPECT_TRUE(comparePolicies(first, message).notCarried.empty());
}

TEST(PolicyComparison, WatchGoesByWhatItEnforces) {
    const auto policy = policyToCompare({{"MinDevicePasswordLength", "8"}});
    const auto comparison = comparePolicies(policy, policy);
    std::map<std::string, std::string> together;
    for (const auto& member : comparison.members) {
        together[member.name] = member.together;
    }
    EXPECT_EQ(together["minDevicePasswordLength"], "8");
    EXPECT_EQ(together["maxDevicePasswordFailedAttempts"], "10") << "attempts are never unlimited";
    EXPECT_EQ(together["allowCamera"], "") << "equal, and not enforced";
}

TEST(CompareCommand, SamePolicyInTwoFormatsIsEqual) {
    const auto outcome =
        deskwatchProgram({"compare", samplePath("policies/grommunio.json"), samplePath("policies/convertto-json.json"),
                          "--policy", "Hardened", "--json"});
    EXPECT_EQ(outcome.status, 3) << "MaxEmailAgeFilter";
    const auto object = Json::parse(outcome.output);
    EXPECT_EQ(object["differences"], 1);
    EXPECT_EQ(object["notCarried"][0], Json::parse(R"({"element": "MaxEmailAgeFilter", "first": null, "second": "4",
        "different": true})"));
    EXPECT_EQ(object["members"].size(), 20U);
    EXPECT_EQ(deskwatchProgram({"compare", samplePath("hardened.json"), samplePath("policies/grommunio.json")}).status,
              0);
}

TEST(CompareCommand, PolicyOfEachFileIsChosen) {
    const auto file = samplePath("policies/policies.ini");
    const auto outcome =
        deskwatchProgram({"compare", file, file, "--policy", "default", "--policy", "Hardened", "--json"});
    EXPECT_EQ(Json::parse(outcome.output)["first"]["policy"], "default");
    EXPECT_EQ(Json::parse(outcome.output)["second"]["policy"], "Hardened");
    EXPECT_EQ(deskwatchProgram({"compare", file, file, "--policy", "none"}).status, 1);
}

} // namespace
} // namespace deskwatch
