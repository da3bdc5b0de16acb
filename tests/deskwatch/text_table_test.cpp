#include "text/text_table.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace deskwatch
