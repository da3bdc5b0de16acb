#include <gtest/gtest.h>

#include <fstream>
#include <set>

#include "device_state.h"
#include "messages.h"
#include "test_device.h"

namespace system_test {
namespace {

namespace fs = std::filesystem;

constexpr char wipeOrder[] = R"({"msgId":"eas-remote-wipe","seqId":9,"param":{"anything":1}})";

void write(const fs::path& file) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "content of " << file.filename();
    ASSERT_TRUE(fs::is_regular_file(file));
}

/// Everything below a folder, links themselves included and not followed.
std::set<std::string> listing(const fs::path& folder) {
    std::set<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        paths.insert(entry.path().lexically_relative(folder).string());
    }
    return paths;
}

/// The same without what lies in a folder of it.
std::set<std::string> listingWithout(const fs::path& folder, const fs::path& leftOut) {
    const std::string prefix = leftOut.lexically_relative(folder).string() + "/";
    std::set<std::string> paths;
    for (const auto& path : listing(folder)) {
        if (path.compare(0, prefix.size(), prefix) != 0) {
            paths.insert(path);
        }
    }
    return paths;
}

class RemoteWipe : public testing::Test {
protected:
    RemoteWipe() {
        device_.launchService();
        write(internal_ / "photo.jpg");
        write(internal_ / "music" / "album" / "song.mp3");
        write(internal_ / ".hidden" / "file");
        write(device_.layout().externalStorage() / "card.txt");
        write(outside_.path() / "diary.txt");
        write(outside_.path() / "folder" / "letter.txt");
        fs::create_symlink(outside_.path() / "diary.txt", internal_ / "link to a file");
        fs::create_directory_symlink(outside_.path() / "folder", internal_ / "link to a folder");
        fs::create_directory_symlink(device_.layout().folder(), internal_ / "link to the watch");
    }

    const TemporaryFolder outside_;
    const TestDevice device_;
    const fs::path internal_ = device_.layout().internalStorage();
};

TEST_F(RemoteWipe, EmptiesTheInternalStorageAndNothingElse) {
    device_.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    const auto deviceBefore = listingWithout(device_.layout().folder(), internal_);
    const auto outsideBefore = listing(outside_.path());
    const auto settingsBefore = settings();

    device_.send("req_update_policy", wipeOrder);

    EXPECT_EQ(listing(internal_), std::set<std::string>{});
    EXPECT_EQ(listingWithout(device_.layout().folder(), internal_), deviceBefore);
    EXPECT_EQ(listing(outside_.path()), outsideBefore);
    EXPECT_EQ(settings(), settingsBefore);
    EXPECT_EQ(storedAccounts(device_.database()), std::vector<std::string>{"1"});
}

TEST_F(RemoteWipe, IsRefusedWithoutAnAccount) {
    const auto before = listing(internal_);

    device_.send("req_update_policy", wipeOrder);

    EXPECT_EQ(listing(internal_), before);
    EXPECT_EQ(device_.log().count("Failed to wipe internal storage. : [-13]"), 1);
}

TEST_F(RemoteWipe, StorageThatIsALinkIsNotFollowed) {
    device_.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    const auto outsideBefore = listing(outside_.path());
    fs::remove_all(internal_);
    fs::create_directory_symlink(outside_.path(), internal_);

    device_.send("req_update_policy", wipeOrder);

    EXPECT_EQ(listing(outside_.path()), outsideBefore);
    EXPECT_EQ(device_.log().count("Failed to wipe internal storage."), 1);
    EXPECT_TRUE(device_.isServiceRunning());
}

} // namespace
} // namespace system_test
