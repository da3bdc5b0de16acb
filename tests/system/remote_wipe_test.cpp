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

/// Everything below a folder but what lies in one of its folders. Links themselves are listed and not followed.
std::set<std::string> listingWithout(const fs::path& folder, const fs::path& leftOut) {
    const std::string prefix = leftOut.string() + "/";
    std::set<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (const auto& path = entry.path().string(); path.compare(0, prefix.size(), prefix) != 0) {
            paths.insert(path);
        }
    }
    return paths;
}

class RemoteWipe : public testing::Test {
protected:
    RemoteWipe() {
        device_.launchService();
        std::ofstream(internal_ / "photo.jpg") << "photo";
        fs::create_directory(internal_ / "music");
        fs::create_directory_symlink(device_.layout().folder(), internal_ / "link to the watch");
        std::ofstream(device_.layout().externalStorage() / "card.txt") << "card";
    }

    const TestDevice device_;
    const fs::path internal_ = device_.layout().internalStorage();
};

TEST_F(RemoteWipe, EmptiesTheInternalStorageAndNothingElse) {
    device_.send("req_update_policy", policyUpdate({alice(hardenedPolicy)}));
    const auto deviceBefore = listingWithout(device_.layout().folder(), internal_);

    device_.send("req_update_policy", wipeOrder);

    EXPECT_TRUE(fs::is_empty(internal_));
    EXPECT_TRUE(fs::remove(device_.layout().internalWipes())) << "the platform counts";
    EXPECT_EQ(listingWithout(device_.layout().folder(), internal_), deviceBefore);
    EXPECT_EQ(settings(), hardenedSettings);
    EXPECT_EQ(storedAccounts(device_.database()), std::vector<std::string>{"1"});
}

TEST_F(RemoteWipe, NeedsNoAccount) {
    device_.send("req_update_policy", wipeOrder);

    EXPECT_FALSE(fs::exists(internal_ / "photo.jpg"));
}

} // namespace
} // namespace system_test
