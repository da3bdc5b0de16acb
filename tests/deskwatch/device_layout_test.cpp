#include "device/device_layout.h"

#include <gtest/gtest.h>

#include <fstream>

#include "device/application_ids.h"
#include "temporary_folder.h"

namespace deskwatch {
namespace {

/// A folder whose bus has a path of that many bytes.
std::filesystem::path folderWithSocketPathOf(std::size_t bytes) {
    const std::string begin = "/tmp/";
    return begin + std::string(bytes - begin.size() - std::string("/bus").size(), 'x');
}

std::string refusal(const std::filesystem::path& folder) {
    try {
        const DeviceLayout layout(folder);
        layout.makeFolders();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

TEST(DeviceLayout, LongestPathThatASocketCanHaveIsTaken) {
    EXPECT_EQ(DeviceLayout(folderWithSocketPathOf(107)).socket().native().size(), 107U);
}

TEST(DeviceLayout, PathOneByteTooLongForASocketIsRefusedWithBothLengths) {
    const auto text = refusal(folderWithSocketPathOf(108));
    EXPECT_NE(text.find("108 bytes long, at most 107 are possible"), std::string::npos) << text;
}

TEST(DeviceLayout, ControlCharacterInThePathIsRefused) {
    EXPECT_NE(refusal("/tmp/two\nlines").find("control characters"), std::string::npos);
}

TEST(DeviceLayout, RelativeFolderBecomesAbsolute) {
    EXPECT_EQ(DeviceLayout("here/").folder(), std::filesystem::current_path() / "here");
}

TEST(DeviceLayout, AddressEscapesWhatIsSpecialInAddresses) {
    EXPECT_EQ(DeviceLayout("/tmp/a,b c").busAddress(), "unix:path=/tmp/a%2Cb%20c/bus");
}

TEST(DeviceLayout, FolderWithSomethingElseInItIsNotMadeAWatch) {
    const TemporaryFolder home;
    std::ofstream(home.path() / "thesis.txt") << "years of work";
    const auto text = refusal(home.path());
    EXPECT_NE(text.find("it contains thesis.txt"), std::string::npos) << text;
    EXPECT_FALSE(std::filesystem::exists(home.path() / "storage"));
}

TEST(DeviceLayout, OnlyTheServiceSeesTheUserDatabaseOfTheWatch) {
    const DeviceLayout layout("/tmp/watch");
    EXPECT_EQ(layout.applicationEnvironment(ids::service).at("NSS_WRAPPER_PASSWD"), "/tmp/watch/passwd");
    EXPECT_EQ(layout.applicationEnvironment("com.velmor.tesk-popup").count("LD_PRELOAD"), 0U);
}

} // namespace
} // namespace deskwatch
