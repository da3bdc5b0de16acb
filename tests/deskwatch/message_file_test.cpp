#include "actors/message_file.h"

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>
#include <string>

#include "temporary_folder.h"

namespace deskwatch {
namespace {

class MessageFile : public testing::Test {
protected:
    std::filesystem::path write(const std::string& text) const {
        std::ofstream(file_, std::ios::binary) << text;
        return file_;
    }

    std::string refusal(const std::string& text, Check check) const {
        try {
            readMessageFile(write(text), check);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }

    std::string place(const std::string& position) const { return file_.string() + ":" + position + ": "; }

private:
    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path() / "message.json";
};

TEST_F(MessageFile, JsonIsReadAsItStands) {
    const std::string text = "{\n  \"msgId\": \"email-itpolicy-ind\" }\n";
    EXPECT_EQ(readMessageFile(write(text), Check::ValidJson), text);
}

TEST_F(MessageFile, WrongCharacterIsRefusedWithItsLineAndColumn) {
    const auto text = refusal("{\n  \"a\": 1,\n  \"b\": x\n}\n", Check::ValidJson);
    EXPECT_EQ(text.find(place("3:8") + "not valid JSON"), 0U) << text;
}

TEST_F(MessageFile, WrongCharacterInTheFirstLineHasItsColumn) {
    const auto text = refusal("{]", Check::ValidJson);
    EXPECT_EQ(text.find(place("1:2")), 0U) << text;
}

TEST_F(MessageFile, TextThatEndsTooEarlyIsRefusedAtItsEnd) {
    const auto text = refusal("{\"a\":\n1", Check::ValidJson);
    EXPECT_EQ(text.find(place("2:2")), 0U) << text;
}

TEST_F(MessageFile, EmptyFileIsNoJson) {
    EXPECT_EQ(refusal("", Check::ValidJson).find(place("1:1")), 0U);
}

TEST_F(MessageFile, TextBehindTheJsonIsRefused) {
    EXPECT_EQ(refusal("{} {}", Check::ValidJson).find(place("1:4")), 0U);
}

TEST_F(MessageFile, TextThatIsNotUtf8IsNoJson) {
    EXPECT_EQ(refusal("{\"a\":\"\xff\"}", Check::ValidJson).find(place("1:7")), 0U);
}

TEST_F(MessageFile, NumberBeyondAllBoundsIsRefused) {
    EXPECT_NE(refusal("{\"a\":1e999}", Check::ValidJson).find("not valid JSON"), std::string::npos);
}

TEST_F(MessageFile, UncheckedTextIsReadAsItStands) {
    EXPECT_EQ(readMessageFile(write("{\xff]"), Check::None), "{\xff]");
}

TEST_F(MessageFile, NullCharacterIsRefusedEvenUnchecked) {
    const auto text = refusal(std::string("ab\ncd\0ef", 8), Check::None);
    EXPECT_EQ(text.find(place("2:3")), 0U) << text;
}

TEST_F(MessageFile, MissingFileIsNamed) {
    EXPECT_THROW(readMessageFile("/nowhere/message.json", Check::None), std::runtime_error);
}

TEST_F(MessageFile, FolderIsNoMessage) {
    EXPECT_THROW(readMessageFile("/tmp", Check::None), std::runtime_error);
}

} // namespace
} // namespace deskwatch
