#include <app_common.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "contract_environment.h"
#include "platform_owners.h"

namespace {

TEST(AppCommonContract, TellsTheApplicationsId) {
    char* id = nullptr;
    EXPECT_EQ(app_get_id(&id), 0);
    EXPECT_EQ(taken(id), contract::applicationId);
}

TEST(AppCommonContract, IdWithoutAPlaceForItIsAnError) {
    EXPECT_EQ(app_get_id(nullptr), -EINVAL);
}

TEST(AppCommonContract, DataPathIsAnAbsoluteFolderWithASlashAtItsEnd) {
    const std::string path = taken(app_get_data_path());
    EXPECT_TRUE(std::filesystem::path(path).is_absolute()) << path;
    EXPECT_EQ(path.back(), '/');
}

} // namespace
