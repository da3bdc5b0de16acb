#include <app_common.h>
#include <app_preference.h>
#include <dpm/administration.h>
#include <dpm/restriction.h>
#include <dpm/security.h>
#include <sys/stat.h>
#include <vconf.h>

#include <fstream>

#include "host_test.h"
#include "platform_owners.h"

namespace fs = std::filesystem;

namespace {

void write(const fs::path& path) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "content";
}

class Storage : public HostTest {
protected:
    Storage() { dpm_admin_register_client(handle(), "com.example.client", 0); }

    device_policy_manager_h handle() const { return handle_.get(); }
    fs::path internal() { return device().folder() / "storage/internal"; }
    fs::path external() { return device().folder() / "storage/external"; }

    int wipe(unsigned storages) const {
        return dpm_security_wipe_data(handle(), static_cast<dpm_security_wipe_type_e>(storages));
    }

private:
    const ManagerOwner handle_{dpm_manager_create()};
};

constexpr unsigned internalStorage = DPM_SECURITY_WIPE_INTERNAL_STORAGE;
constexpr unsigned externalStorage = DPM_SECURITY_WIPE_EXTERNAL_STORAGE;

TEST_F(Storage, WipeEmptiesTheFolderAndKeepsIt) {
    write(internal() / "note");
    write(internal() / "photos/2024/one");
    write(internal() / ".hidden");
    write(external() / "card");

    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_NONE);

    EXPECT_TRUE(fs::is_directory(internal()));
    EXPECT_TRUE(fs::is_empty(internal()));
    EXPECT_TRUE(fs::exists(external() / "card"));
}

TEST_F(Storage, WipeOfBothEmptiesBoth) {
    write(internal() / "note");
    write(external() / "card");
    EXPECT_EQ(wipe(internalStorage | externalStorage), DPM_ERROR_NONE);
    EXPECT_TRUE(fs::is_empty(internal()));
    EXPECT_TRUE(fs::is_empty(external()));
}

TEST_F(Storage, WipeRemovesLinksAndFollowsNone) {
    write(device().folder() / "outside/kept");
    fs::create_directory_symlink(device().folder() / "outside", internal() / "link");
    fs::create_directories(internal() / "folder");
    fs::create_symlink(device().folder() / "outside/kept", internal() / "folder/link");

    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_NONE);

    EXPECT_TRUE(fs::is_empty(internal()));
    EXPECT_TRUE(fs::exists(device().folder() / "outside/kept"));
}

TEST_F(Storage, WipeRefusesAStorageThatIsALink) {
    write(device().folder() / "outside/kept");
    fs::remove(internal());
    fs::create_directory_symlink(device().folder() / "outside", internal());

    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_PERMISSION_DENIED);

    EXPECT_TRUE(fs::exists(device().folder() / "outside/kept"));
}

TEST_F(Storage, WipeRefusesAStorageBelowALink) {
    write(device().folder() / "outside/internal/kept");
    fs::remove_all(device().folder() / "storage");
    fs::create_directory_symlink(device().folder() / "outside", device().folder() / "storage");

    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_PERMISSION_DENIED);

    EXPECT_TRUE(fs::exists(device().folder() / "outside/internal/kept"));
}

TEST_F(Storage, StorageThatIsNotThereIsWipedAlready) {
    fs::remove(external());
    EXPECT_EQ(wipe(externalStorage), DPM_ERROR_NONE);
}

TEST_F(Storage, NothingIsWipedWhileNobodyAdministers) {
    write(internal() / "note");
    dpm_admin_deregister_client(handle(), "com.example.client", 0);
    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_PERMISSION_DENIED);
    EXPECT_TRUE(fs::exists(internal() / "note"));
}

TEST_F(Storage, IsEncryptedWhenTheDevicesKeySaysSo) {
    vconf_set_str("db/ode/crypto_state", "encrypted");
    int isEncrypted = 0;
    dpm_security_is_internal_storage_encrypted(handle(), &isEncrypted);
    EXPECT_EQ(isEncrypted, 1);
    dpm_security_is_external_storage_encrypted(handle(), &isEncrypted);
    EXPECT_EQ(isEncrypted, 0);
}

TEST_F(Storage, DataPathIsAFolderForTheOwnerAlone) {
    const std::string path = taken(app_get_data_path());
    EXPECT_EQ(path, device().folder().string() + "/apps/com.example.desk/data/");
    struct stat status {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
}

TEST_F(Storage, TextsThatAreNotUtf8AreRefused) {
    EXPECT_EQ(vconf_set_str("db/example/key", "\xff"), -1);
    EXPECT_EQ(vconf_set_str("db/example/\xff", "text"), -1);
    EXPECT_EQ(preference_set_string("key", "\xff"), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_int("\xff", 1), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_restriction_set_messaging_state(handle(), "\xff", 1), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_admin_register_client(handle(), "\xff", 0), DPM_ERROR_INVALID_PARAMETER);
}

TEST_F(Storage, NamesThatWouldLeaveTheirFolderAreRefused) {
    EXPECT_EQ(dpm_restriction_set_messaging_state(handle(), "a/b", 1), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(dpm_admin_register_client(handle(), "a/b", 0), DPM_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_int("", 1), PREFERENCE_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(preference_set_int("a//b", 1), PREFERENCE_ERROR_INVALID_PARAMETER);
}

} // namespace
