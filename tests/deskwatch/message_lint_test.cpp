#include "messages/message_lint.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "commands_fixture.h"
#include "messages/message_schema.h"
#include "policy_files/policy_setting.h"

namespace deskwatch {
namespace {

using Lines = std::vector<std::string>;

std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

Lines lint(const std::string& text) {
    return remarkLines("m", text);
}

TEST(MessageLint, WhatIsOddIsNamedWithItsLineAndWhatWouldBeRight) {
    EXPECT_EQ(lint("[]"), Lines{"m:1: a message is an object, not an array"});
    EXPECT_EQ(lint("{\n\"seqId\": 1}"), Lines{"m:1: \"msgId\" is missing; it names the kind of the message"});
    EXPECT_EQ(lint("{\n\"msgId\":\n\"email-itpolicy-in\"}"),
              Lines{"m:2: \"msgId\" is \"email-itpolicy-in\", which is not a kind of message; did you mean "
                    "\"email-itpolicy-ind\"?"});
    EXPECT_EQ(lint("{\"msgId\": \"email-init-res\", \"seqId\": \"x\",\n\"param\": {\n\"accountId\": [\n7]}}"),
              (Lines{"m:1: \"seqId\" is \"x\"; it is a number", "m:4: an account is an object, not 7"}));
    EXPECT_EQ(
        lint("{\"msgId\": \"email-account-info\",\n\"accountId\": [\n{\"id\": 1, \"accountName\": \"a\", "
             "\"displayName\": \"a\"},\n{\"id\": 1, \"accountName\": \"a\\u001b\", \"displayName\": 4,\n\"id\": 1}]}"),
        (Lines{"m:4: \"accountName\" has control characters", "m:4: \"displayName\" is 4; it is a text",
               "m:4: account 1 is in the message twice; the later one counts",
               "m:5: \"id\" is given in line 4 already; the later one counts"}));
    EXPECT_EQ(lint(R"({"msgId": "email-itpolicy-ind", "param": []})"), Lines{"m:1: the message names no account"});
    EXPECT_EQ(lint(R"({"msgId": "email-account-info", "accountId": [{"accountName": "", "displayName": "",
"id": )" + std::string(300, '1') +
                   "}]}"),
              Lines{"m:2: \"id\" is a number of 300 digits; it is a number from 1 to 2147483647"})
        << "the digits are not repeated";
}

TEST(MessageLint, AgreesWithTheSchemasOnEveryKnownFile) {
    const std::filesystem::path source(SOURCE_FOLDER);
    for (const auto* folder : {"samples", "tests/schema/odd", "tests/schema/rejected"}) {
        for (const auto& entry : std::filesystem::directory_iterator(source / folder)) {
            if (entry.path().extension() == ".json") {
                EXPECT_EQ(lint(contents(entry)).empty(), std::string(folder) == "samples") << entry.path();
            }
        }
    }
}

TEST(MessageSchema, FilesAndTableAreThoseOfTheMembers) {
    const std::filesystem::path source(SOURCE_FOLDER);
    for (const auto& file : schemaFiles()) {
        EXPECT_EQ(contents(source / "docs/schema" / file.name), file.text) << "deskwatch docs --schemas docs/schema";
    }
    EXPECT_NE(contents(source / "docs/messages.md").find(memberTable(parameterOf)), std::string::npos)
        << memberTable(parameterOf);
}

class LintCommand : public Commands {};

TEST_F(LintCommand, RemarksFailAndAreWarningsWhereTheMessageIsSent) {
    const std::string file = std::string(SOURCE_FOLDER) + "/tests/schema/odd/misspelt_member.json";
    const std::string remark =
        file + ":28: \"minDevicePasswordLenght\" is not a member; did you mean \"minDevicePasswordLength\"?\n";

    EXPECT_EQ(run({"lint", sample("hardened.json")}), "");
    const auto linted = deskwatchProgram({"lint", "/nowhere", write("broken.json", "{").string(), file});
    boot();
    const auto foreseen = deskwatchProgram({"whatif", file});
    const auto sent = deskwatchProgram({"mail", "policy", file});

    EXPECT_EQ(linted.status, 1);
    EXPECT_EQ(linted.errors.find("deskwatch: lint: cannot read /nowhere: No such file or directory\n"), 0U);
    EXPECT_NE(linted.errors.find("broken.json:1:2: not valid JSON: "), std::string::npos) << linted.errors;
    EXPECT_NE(linted.output.find(remark), std::string::npos) << linted.output;
    for (const auto& outcome : {foreseen, sent}) {
        EXPECT_EQ(outcome.status, 0);
        EXPECT_NE(outcome.errors.find("warning: " + remark), std::string::npos) << outcome.errors;
    }
}

TEST_F(LintCommand, StandardInputAndWhatCannotBeReadAreNamed) {
    EXPECT_EQ(deskwatchProgram({"lint", "/"}).errors, "deskwatch: lint: cannot read /: Is a directory\n");
    EXPECT_EQ(deskwatchProgram({"lint", "/no\xff"}).errors,
              "deskwatch: lint: cannot read /no\uFFFD: No such file or directory\n");
    const auto endless = deskwatchProgram({"lint", "/dev/zero"});
    EXPECT_EQ(endless.errors, "deskwatch: lint: /dev/zero has more than 1000000 bytes\n");
    const auto deep = write("deep.json", std::string(2000, '[') + std::string(2000, ']'));
    EXPECT_NE(deskwatchProgram({"lint", deep.string()}).errors.find("nested deeper than 1024 levels"),
              std::string::npos);
    const auto noInput = deskwatchProgram({"lint", "-"}); // the standard input of a test is empty
    EXPECT_EQ(noInput.errors.find("deskwatch: lint: standard input:1:1: not valid JSON"), 0U) << noInput.errors;
}

} // namespace
} // namespace deskwatch
