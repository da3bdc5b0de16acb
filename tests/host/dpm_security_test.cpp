#include <dpm/security.h>
#include <vconf.h>

#include <fstream>

#include "host_bus.h"
#include "host_test.h"
#include "no_root.h"
#include "platform_owners.h"

namespace fs = std::filesystem;

namespace {

void write(const fs::path& path) {
    fs::create_directories(path.parent_path());
    std::ofstream(path) << "content";
}

class DpmSecurity : public HostTest {
protected:
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

TEST_F(DpmSecurity, WipeEmptiesTheFolderAndKeepsIt) {
    write(internal() / "note");
    write(internal() / "photos/2024/one");
    write(internal() / ".hidden");
    write(external() / "card");
    std::string announced;
    const auto note = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant* arguments,
                         gpointer text) {
        const char* name = nullptr;
        g_variant_get(arguments, "(&s)", &name);
        *static_cast<std::string*>(text) = name;
    };
    const c::ObjectOwner<GDBusConnection> bus(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
    g_dbus_connection_signal_subscribe(bus.get(), nullptr, "tesk.host.System", "Wiped", host_bus::systemPath, nullptr,
                                       G_DBUS_SIGNAL_FLAGS_NONE, note, &announced, nullptr);

    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_NONE);

    EXPECT_TRUE(fs::is_directory(internal()));
    EXPECT_TRUE(fs::is_empty(internal()));
    EXPECT_TRUE(fs::exists(external() / "card"));
    EXPECT_EQ(fs::file_size(device().folder() / "run/wipes-internal"), 1U) << "a byte for each wipe";
    EXPECT_TRUE(runMainLoopUntil([&] { return announced == "internal"; }));
}

TEST_F(DpmSecurity, StorageIsEncryptedWhenItsOwnKeySaysSo) {
    for (const bool isInternal : {true, false}) {
        int internalAnswer = -1;
        int externalAnswer = -1;
        vconf_set_str("db/ode/crypto_state", isInternal ? "encrypted" : "unencrypted");
        vconf_set_str("db/ode/external_crypto_state", isInternal ? "unencrypted" : "encrypted");
        EXPECT_EQ(dpm_security_is_internal_storage_encrypted(handle(), &internalAnswer), DPM_ERROR_NONE);
        EXPECT_EQ(dpm_security_is_external_storage_encrypted(handle(), &externalAnswer), DPM_ERROR_NONE);
        EXPECT_EQ(internalAnswer, isInternal ? 1 : 0);
        EXPECT_EQ(externalAnswer, isInternal ? 0 : 1);
    }
}

TEST_F(DpmSecurity, WipeOfBothEmptiesBoth) {
    write(internal() / "note");
    write(external() / "card");
    EXPECT_EQ(wipe(internalStorage | externalStorage), DPM_ERROR_NONE);
    EXPECT_TRUE(fs::is_empty(internal()));
    EXPECT_TRUE(fs::is_empty(external()));
}

TEST_F(DpmSecurity, WipeRemovesLinksAndFollowsNone) {
    write(device().folder() / "outside/kept");
    fs::create_directory_symlink(device().folder() / "outside", internal() / "link");
    fs::create_directories(internal() / "folder");
    fs::create_symlink(device().folder() / "outside/kept", internal() / "folder/link");

    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_NONE);

    EXPECT_TRUE(fs::is_empty(internal()));
    EXPECT_TRUE(fs::exists(device().folder() / "outside/kept"));
}

TEST_F(DpmSecurity, WipeRefusesAStorageThatIsALink) {
    write(device().folder() / "outside/kept");
    fs::remove(internal());
    fs::create_directory_symlink(device().folder() / "outside", internal());

    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_NOT_PERMITTED);

    EXPECT_TRUE(fs::exists(device().folder() / "outside/kept"));
}

TEST_F(DpmSecurity, WipeRefusesAStorageBelowALink) {
    write(device().folder() / "outside/internal/kept");
    fs::remove_all(device().folder() / "storage");
    fs::create_directory_symlink(device().folder() / "outside", device().folder() / "storage");

    EXPECT_EQ(wipe(internalStorage), DPM_ERROR_NOT_PERMITTED);

    EXPECT_TRUE(fs::exists(device().folder() / "outside/internal/kept"));
}

TEST_F(DpmSecurity, StorageThatIsNotThereIsWipedAlready) {
    fs::remove(external());
    EXPECT_EQ(wipe(externalStorage), DPM_ERROR_NONE);
}

TEST_F(DpmSecurity, WipeTellsWhatItCannotRemoveAndRemovesTheRest) {
    const fs::path kept = internal() / "kept";
    write(kept / "note");
    write(internal() / "gone");
    fs::permissions(device().folder(), fs::perms::all);
    fs::permissions(internal(), fs::perms::all);
    fs::permissions(kept, static_cast<fs::perms>(0555));

    testing::internal::CaptureStderr();
    {
        const NoRoot user;
        EXPECT_EQ(wipe(internalStorage), DPM_ERROR_NOT_PERMITTED);
    }
    fs::permissions(kept, fs::perms::all); // so that the test can remove it

    EXPECT_EQ(testing::internal::GetCapturedStderr(), "tesk-host: dpm_security_wipe_data: cannot wipe all of " +
                                                          internal().string() + ": these remain: " + kept.string() +
                                                          " (Permission denied)\n");
    EXPECT_TRUE(fs::exists(kept / "note"));
    EXPECT_FALSE(fs::exists(internal() / "gone"));
}

} // namespace
