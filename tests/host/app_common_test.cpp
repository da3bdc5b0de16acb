#include <app_common.h>
#include <sys/stat.h>

#include "host_test.h"
#include "platform_owners.h"

namespace {

class AppCommon : public HostTest {};

TEST_F(AppCommon, DataPathIsAFolderForTheOwnerAlone) {
    const std::string path = taken(app_get_data_path());
    EXPECT_EQ(path, device().folder().string() + "/apps/com.example.desk/data/");
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

} // namespace
