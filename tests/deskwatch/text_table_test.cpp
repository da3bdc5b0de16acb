#include "text/text_table.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "text/suggestion.h"
#include "text/value_words.h"

namespace deskwatch {
namespace {

TEST(TextTable, ColumnsAreAsWideAsTheirWidestCell) {
    EXPECT_EQ(textTable({{"a", "1"}, {"long", "2", "3"}}), "  a     1\n  long  2  3\n");
}

TEST(TextTable, CharactersCountAndNotTheirBytes) {
    EXPECT_EQ(textTable({{"\u00fc\u00fc", "1"}, {"ab", "2"}}), "  \u00fc\u00fc  1\n  ab  2\n");
}

TEST(TextTable, ControlCharactersAndBrokenTextBecomeVisible) {
    EXPECT_EQ(textTable({{"a\x1b[31m\nb"}, {"c\xff"}}), "  a\uFFFD[31m\uFFFDb\n  c\uFFFD\n");
}

TEST(TextTable, NoRowsAreNoText) {
    EXPECT_EQ(textTable({}), "");
}

TEST(Suggestion, ThirdOfAWordOfAHundredCharactersMayBeWrong) {
    const std::string word(100, 'a');
    EXPECT_EQ(didYouMean("abcdex", {"abcdef", "ABCDEX"}), "; did you mean \"ABCDEX\"?");
    EXPECT_EQ(didYouMean("abcxyf", {"abcdef"}), "; did you mean \"abcdef\"?");
    EXPECT_EQ(didYouMean("abxyzf", {"abcdef"}), "");
    EXPECT_EQ(didYouMean("abcd", {"abcdef"}), "");
    EXPECT_EQ(didYouMean("abcde", {"abcdef"}), "; did you mean \"abcdef\"?");
    EXPECT_EQ(nearest(word, {word + "b"}), word + "b");
    EXPECT_EQ(nearest(word + "a", {word}), std::nullopt);
}

TEST(ValueWords, NumberOfASettingOrKeyHasItsWord) {
    const std::vector<std::pair<std::string, std::vector<std::string>>> words{
        {"quality",
         {"0 none", "32 numeric", "33 numeric, simple allowed", "34", "128 alphanumeric",
          "129 alphanumeric, simple allowed"}},
        {"wifi_state", {"0 forbidden", "1 allowed", "2"}},
        {"messaging_state", {"0 forbidden", "1 allowed"}},
        {"popimap_email_state", {"0 forbidden", "1 allowed"}},
        {"db/setting/lock_type", {"0 none", "1 PIN", "2 password", "3"}},
        {"minimum_length", {"0", "1"}},
    };
    for (const auto& [name, texts] : words) {
        for (const auto& text : texts) {
            EXPECT_EQ(wordedNumber(name, std::stoi(text)), text) << name;
        }
    }
}

} // namespace
} // namespace deskwatch
