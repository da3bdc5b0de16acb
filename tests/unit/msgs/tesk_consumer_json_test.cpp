#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "msgs/TeskConsumerJson.h"

namespace {

constexpr int limit = 1024;

std::string repeated(const std::string& part, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

bool isTooDeep(const std::string& text) {
    return TeskConsumerJson::isNestedTooDeep(text);
}

TEST(JsonNesting, EndsAt1024Levels) {
    EXPECT_FALSE(isTooDeep(repeated("[", limit)));
    EXPECT_FALSE(isTooDeep(repeated("{", limit)));
    EXPECT_TRUE(isTooDeep(repeated("[", limit + 1)));
    EXPECT_TRUE(isTooDeep(repeated("{", limit + 1)));
}

TEST(JsonNesting, ClosedLevelsCountNoMore) {
    EXPECT_FALSE(isTooDeep(repeated("[]", limit + 1)));
    EXPECT_FALSE(isTooDeep(repeated("{}", limit + 1)));
    EXPECT_FALSE(isTooDeep("[]" + repeated("[", limit)));
    EXPECT_TRUE(isTooDeep("[]" + repeated("[", limit + 1)));
}

TEST(JsonNesting, BracketsInATextDoNotCount) {
    EXPECT_FALSE(isTooDeep('"' + repeated("[", limit + 1) + '"'));
    EXPECT_FALSE(isTooDeep(R"("\")" + repeated("[", limit + 1) + '"'));
    EXPECT_FALSE(isTooDeep(R"("/'")" + repeated("[]", limit + 1)));
}

TEST(JsonNesting, BracketsAfterATextCount) {
    for (const auto* text : {R"("")", R"("\\")", R"("\"")", R"("\n")"}) {
        EXPECT_TRUE(isTooDeep(text + repeated("[", limit + 1))) << text;
        EXPECT_FALSE(isTooDeep(text + repeated("[]", limit + 1))) << text;
    }
}

TEST(JsonNesting, CommentsAndTextsInSingleQuotesNeitherCountNorEndTheCounting) {
    const auto deep = repeated("[", limit + 1);
    for (const auto& beginning :
         std::vector<std::string>{"/* \" ' */", "'\"'", "'\\'", "'" + deep + "'", "/*" + deep + "*/"}) {
        EXPECT_FALSE(isTooDeep(beginning + repeated("[]", limit + 1))) << beginning;
        EXPECT_TRUE(isTooDeep(beginning + deep)) << beginning;
    }
}

TEST(JsonNesting, WhatOneVersionOfTheLibraryTakesForACommentCountsWhereAnotherDoesNot) {
    const auto deep = repeated("[", limit + 1);
    EXPECT_TRUE(isTooDeep("// ' \n" + deep)) << "a comment to the end of the line";
    EXPECT_TRUE(isTooDeep("// " + deep)) << "an empty comment between two slashes";
    EXPECT_TRUE(isTooDeep("/* / " + deep + " */")) << "a comment that ends at the second slash";
    EXPECT_TRUE(isTooDeep("/ " + deep)) << "a slash that begins no comment";
}

TEST(JsonNesting, TextAfterTheRootCounts) {
    EXPECT_TRUE(isTooDeep("{}" + repeated("[", limit + 1)));
    EXPECT_FALSE(isTooDeep("{}" + repeated("[]", limit + 1)));
}

} // namespace
