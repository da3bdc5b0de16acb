#include "device_state.h"
#include "messages.h"
#include "watch.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>

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
        watch_.launchService();
        write(internal_ / "photo.jpg");
        write(internal_ / "music" / "album" / "song.mp3");
        write(internal_ / ".hidden" / "file");
        write(watch_.layout().externalStorage() / "card.txt");
        write(outside_.path() / "diary.txt");
        write(outside_.path() / "folder" / "letter.txt");
        fs::create_symlink(outside_.path() / "diary.txt", internal_ / "link to a file");
        fs::create_directory_symlink(outside_.path() / "folder", internal_ / "link to a folder");
        fs::create_directory_symlink(watch_.layout().folder(), internal_ / "link to the watch");
    }

    const TemporaryFolder outside_;
    const Watch watch_;
    const fs::path internal_ = watch_.layout().internalStorage();
};

TEST_F(RemoteWipe, EmptiesTheInternalStorageAndNothingElse) {
    watch_.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    const auto watchBefore = listingWithout(watch_.layout().folder(), internal_);
    const auto outsideBefore = listing(outside_.path());
    const auto settingsBefore = settings();

    watch_.send("req_update_policy", wipeOrder);

    EXPECT_EQ(listing(internal_), std::set<std::string>{});
    EXPECT_EQ(listingWithout(watch_.layout().folder(), internal_), watchBefore);
    EXPECT_EQ(listing(outside_.path()), outsideBefore);
    EXPECT_EQ(settings(), settingsBefore);
    EXPECT_EQ(storedAccounts(watch_.database()), std::vector<std::string>{"1"});
}

TEST_F(RemoteWipe, IsRefusedWithoutAnAccount) {
    const auto before = listing(internal_);

    watch_.send("req_update_policy", wipeOrder);

    EXPECT_EQ(listing(internal_), before);
    EXPECT_EQ(watch_.log().count("Failed to wipe internal storage. : [-13]"), 1);
}

TEST_F(RemoteWipe, StorageThatIsALinkIsNotFollowed) {
    watch_.send("req_update_policy", policyUpdate({alice(pinPolicy)}));
    const auto outsideBefore = listing(outside_.path());
    fs::remove_all(internal_);
    fs::create_directory_symlink(outside_.path(), internal_);

    watch_.send("req_update_policy", wipeOrder);

    EXPECT_EQ(listing(outside_.path()), outsideBefore);
    EXPECT_EQ(watch_.log().count("Failed to wipe internal storage."), 1);
    EXPECT_TRUE(watch_.isServiceRunning());
}

} // namespace
} // namespace system_test
