#include "device/device_layout.h"

#include <gtest/gtest.h>

#include <fstream>

#include "device/application_ids.h"
#include "temporary_folder.h"

namespace deskwatch {
namespace {

std::string refusal(const std::filesystem::path& folder) {
    try {
        const DeviceLayout layout(folder);
        layout.makeFolders();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return "";
}

TEST(DeviceLayout, SocketIsInTheFolderUnlessThePathIsTooLongForOne) {
    const std::filesystem::path longest = "/tmp/" + std::string(98, 'x');
    EXPECT_EQ(DeviceLayout(longest).socket(), longest / "bus") << "107 bytes";
    const auto elsewhere = DeviceLayout(longest.string() + "x").socket();
    EXPECT_EQ(elsewhere.parent_path().parent_path(), "/tmp");
    EXPECT_NE(elsewhere, DeviceLayout(longest.string() + "y").socket());
}

TEST(DeviceLayout, NameThatIsNotUtf8IsRefused) {
    EXPECT_NE(refusal("/tmp/\xff").find("the folder's name is not UTF-8"), std::string::npos);
}

TEST(DeviceLayout, PathInWhichNoDatabaseCanBeOpenedIsRefused) {
    EXPECT_NE(refusal("/tmp/" + std::string(446, 'x')).find("path has 451 bytes; with more than 450"),
              std::string::npos);
}

TEST(DeviceLayout, FolderInsideAWatchIsRefused) {
    const TemporaryFolder folder;
    const DeviceLayout outer(folder.path() / "outer");
    outer.makeFolders();
    std::ofstream(outer.busConfiguration()) << "<busconfig/>";
    EXPECT_NE(refusal(outer.internalStorage() / "inner").find("is inside the watch " + outer.folder().string()),
              std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(outer.internalStorage() / "inner"));
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
