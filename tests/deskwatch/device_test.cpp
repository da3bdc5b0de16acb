#include "device/device.h"

#include <dconf.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>
#include <thread>

#include "c_owners.h"
#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/bus_process.h"
#include "device/file_descriptor.h"
#include "temporary_folder.h"

namespace deskwatch {
namespace {

constexpr std::chrono::seconds endTimeout{20};

/// Applications that are never asked for in these tests; `true` is a program that every machine has.
std::vector<Application> someApplications() {
    return standardApplications("/bin/true", {"/bin/true"});
}

ProcessHandle busOf(const Device& device) {
    return BusProcess(device.layout().busRecord()).running().value();
}

/// Makes this process see the settings of that watch; once per process, because the library remembers them.
void enter(const Device& device) {
    for (const auto& [name, value] : device.appEnvironment("com.example.test")) {
        setenv(name.c_str(), value.c_str(), 1);
    }
}

std::string setting(const char* key) {
    const c::ObjectOwner<DConfClient> client(dconf_client_new());
    const c::VariantOwner value(dconf_client_read(client.get(), key));
    const c::MemoryOwner<char> text(value ? g_variant_print(value.get(), TRUE) : g_strdup("unset"));
    return text.get();
}

/// Writes a setting as another process would. The library's client is of no use where the watch is booted anew: it ends
/// its process when the bus goes.
void writeSetting(const Device& device, const char* key, int value) {
    const c::Owner<DConfChangeset, dconf_changeset_unref> change(
        dconf_changeset_new_write(key, g_variant_new_int32(value)));
    const c::VariantOwner serialised(g_variant_ref_sink(dconf_changeset_serialise(change.get())));
    GVariant* bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, g_variant_get_data(serialised.get()),
                                                g_variant_get_size(serialised.get()), 1);
    BusClient(device.busAddress())
        .call({"ca.desrt.dconf", "/ca/desrt/dconf/Writer/user", "ca.desrt.dconf.Writer", "Change"},
              g_variant_new("(@ay)", bytes), endTimeout);
}

std::string textOf(const std::filesystem::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <typename Action>
std::string failureOf(Action action) {
    try {
        action();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

/// Calls an application that ends at once with a failure, which starts it; returns what became of it.
std::string activate(const Device& device, const std::string& id) {
    return failureOf([&] { BusClient(device.busAddress()).call({id, "/x", "x.y", "Z"}, nullptr, endTimeout); });
}

TEST(Device, FreshWatchHasNoLockNoEncryptionAndNoTutorial) {
    const TemporaryFolder folder;
    const BootedDevice watch(folder.path(), someApplications());
    enter(*watch);
    EXPECT_EQ(setting("/vconf/db/eas/password_policy_applied"), "0");
    EXPECT_EQ(setting("/vconf/db/eas/device_encryption_applied"), "0");
    EXPECT_EQ(setting("/vconf/db/eas/is_pwd_input_finished"), "0");
    EXPECT_EQ(setting("/vconf/db/setting/lock_type"), "0");
    EXPECT_EQ(setting("/vconf/db/ode/crypto_state"), "'unencrypted'");
    EXPECT_EQ(setting("/vconf/db/rgn/country_iso"), "'US'");
    EXPECT_EQ(setting("/vconf/memory/private/com.velmor.hearth/tutorial_is_in_progress"), "0");
}

TEST(Device, StateThatTheCallerNamesIsSet) {
    const TemporaryFolder folder;
    const BootedDevice watch(folder.path(), someApplications(), {Lock::Pin, true, "KR", true});
    enter(*watch);
    EXPECT_EQ(setting("/vconf/db/setting/lock_type"), "1");
    EXPECT_EQ(setting("/vconf/db/ode/crypto_state"), "'encrypted'");
    EXPECT_EQ(setting("/vconf/db/rgn/country_iso"), "'KR'");
    EXPECT_EQ(setting("/vconf/memory/private/com.velmor.hearth/tutorial_is_in_progress"), "1");
}

TEST(Device, BootForgetsTheKeysUnderMemoryAndKeepsTheOthers) {
    const TemporaryFolder folder;
    {
        const BootedDevice first(folder.path(), someApplications(), {std::nullopt, std::nullopt, "KR", true});
        writeSetting(*first, "/vconf/memory/something", 7);
        writeSetting(*first, "/vconf/db/setting/lock_type", 2);
    }

    const BootedDevice second(folder.path(), someApplications());

    enter(*second);
    EXPECT_EQ(setting("/vconf/memory/something"), "unset");
    EXPECT_EQ(setting("/vconf/memory/private/com.velmor.hearth/tutorial_is_in_progress"), "0");
    EXPECT_EQ(setting("/vconf/db/setting/lock_type"), "2");
    EXPECT_EQ(setting("/vconf/db/rgn/country_iso"), "'KR'");
}

TEST(Device, SecondBootOfABootedWatchIsRefused) {
    const TemporaryFolder folder;
    const BootedDevice watch(folder.path(), someApplications());
    const auto bus = busOf(*watch);

    const auto failure = failureOf([&] { Device(folder.path()).boot(someApplications()); });

    EXPECT_EQ(failure, folder.path().string() + " is already booted");
    EXPECT_EQ(busOf(*watch).pid(), bus.pid());
}

TEST(Device, OffLeavesNoProcess) {
    const TemporaryFolder folder;
    const Device watch(folder.path());
    watch.boot(someApplications());
    const auto bus = busOf(watch);
    const auto applications = BusClient(watch.busAddress()).daemon().applicationProcesses();
    ASSERT_EQ(applications.size(), 1U) << "the settings service runs";

    EXPECT_TRUE(watch.off());

    EXPECT_TRUE(bus.waitForEnd(std::chrono::milliseconds::zero()));
    EXPECT_TRUE(applications.front().waitForEnd(std::chrono::milliseconds::zero()));
    EXPECT_FALSE(watch.isBooted());
    EXPECT_FALSE(std::filesystem::exists(watch.layout().socket()));
}

TEST(Device, OffOfAWatchThatIsOffSaysSo) {
    const TemporaryFolder folder;
    const Device watch(folder.path());
    watch.boot(someApplications());
    ASSERT_TRUE(watch.off());
    EXPECT_FALSE(watch.off());
}

TEST(Device, OffOfAFolderThatIsNoWatchIsRefused) {
    const TemporaryFolder folder;
    EXPECT_EQ(failureOf([&] { Device(folder.path()).off(); }), folder.path().string() + " is not a watch folder");
}

TEST(Device, KilledBusIsCleanedUpByTheNextBoot) {
    const TemporaryFolder folder;
    const Device watch(folder.path());
    watch.boot(someApplications());
    const auto bus = busOf(watch);
    bus.signal(SIGKILL);
    ASSERT_TRUE(bus.waitForEnd(endTimeout));
    EXPECT_FALSE(watch.isBooted());

    watch.boot(someApplications());

    EXPECT_NE(busOf(watch).pid(), bus.pid());
    EXPECT_TRUE(watch.off());
}

TEST(Device, KilledBusIsCleanedUpByOff) {
    const TemporaryFolder folder;
    const Device watch(folder.path());
    watch.boot(someApplications());
    const auto bus = busOf(watch);
    bus.signal(SIGKILL);
    ASSERT_TRUE(bus.waitForEnd(endTimeout));

    watch.off(); // what the bus has left may be ending, or have ended

    EXPECT_FALSE(std::filesystem::exists(watch.layout().socket()));
    EXPECT_FALSE(std::filesystem::exists(watch.layout().busRecord()));
}

TEST(Device, WatchOfARemovedFolderEndsWithTheNextBootOrOff) {
    const TemporaryFolder folder;
    const Device watch(folder.path() / "watch");
    for (const bool isBootedAgain : {true, false}) {
        watch.boot(someApplications());
        const auto bus = busOf(watch);
        std::filesystem::remove_all(watch.layout().folder());
        if (isBootedAgain) {
            watch.boot(someApplications());
        }
        EXPECT_TRUE(watch.off());
        EXPECT_TRUE(bus.waitForEnd(std::chrono::milliseconds::zero()));
    }
}

TEST(Device, BootThatEndedSuddenlyIsCleanedUpByTheNextOne) {
    const TemporaryFolder folder;
    const Device watch(folder.path());
    watch.boot(someApplications());
    const auto bus = busOf(watch);
    std::filesystem::remove(watch.layout().bootedMark()); // as if the boot had not come to its end
    EXPECT_FALSE(watch.isBooted());

    watch.boot(someApplications());

    EXPECT_TRUE(bus.waitForEnd(std::chrono::milliseconds::zero()));
    EXPECT_TRUE(watch.isBooted());
    EXPECT_TRUE(watch.off());
}

TEST(Device, BootWhoseSettingsCannotBeWrittenLeavesNoProcess) {
    const TemporaryFolder folder;
    const Device watch(folder.path() / "watch");
    std::filesystem::create_directories(watch.layout().settingsDatabase()); // a folder in the place of the file

    EXPECT_THROW(watch.boot(someApplications()), std::runtime_error);

    EXPECT_TRUE(ProcessHandle::withVariable("TESK_DEVICE", watch.layout().folder().string()).empty());
    EXPECT_FALSE(std::filesystem::exists(watch.layout().socket()));
}

TEST(Device, ProcessThatGotTheNumberOfTheBusIsLeftAlone) {
    const TemporaryFolder folder;
    const Device watch(folder.path());
    watch.boot(someApplications());
    ASSERT_TRUE(watch.off());
    std::ofstream(watch.layout().busRecord())
        << getpid() << " (dbus-daemon) S 1 1 1 0 -1 0 1 0 0 0 0 0 0 0 20 0 1 0 1 1 2 3";

    EXPECT_FALSE(watch.off()); // were it signalled, this test would end here
    EXPECT_FALSE(watch.isBooted());
}

TEST(Device, WatchesStandSideBySide) {
    const TemporaryFolder folder;
    const BootedDevice first(folder.path() / "first", someApplications(), {Lock::Pin, {}, {}, {}});
    const BootedDevice second(folder.path() / "second", someApplications());
    EXPECT_NE(busOf(*first).pid(), busOf(*second).pid());
    enter(*second);
    EXPECT_EQ(setting("/vconf/db/setting/lock_type"), "0");
}

TEST(Device, FolderMayHaveALongPath) {
    const TemporaryFolder folder;
    const auto half = folder.path() / std::string(200, 'x');
    const BootedDevice watch(half / std::string(449 - half.native().size(), 'y'), someApplications());
    enter(*watch);
    EXPECT_EQ(setting("/vconf/db/setting/lock_type"), "0");
}

TEST(Device, FolderMayHoldCharactersThatAreSpecialSomewhere) {
    const TemporaryFolder folder;
    const BootedDevice watch(folder.path() / R"(a 'b' "c" & <d> \e, %f $g)", someApplications());
    enter(*watch);
    EXPECT_EQ(setting("/vconf/db/setting/lock_type"), "0");
}

TEST(Device, ApplicationStartsWithItsIdOnItsWatch) {
    const TemporaryFolder folder;
    const std::string id = "com.example.printer";
    const BootedDevice watch(folder.path() / "it's",
                             {{id, {"/bin/sh", "-c", R"(echo "I am $TESK_APP_ID" '\' >&2; exit 1)"}}});

    activate(*watch, id);

    const auto log = textOf(watch->layout().log());
    EXPECT_NE(log.find("I am com.example.printer \\\n"), std::string::npos) << log;
}

TEST(Device, ServiceFindsTheOwnerOfTheWatch) {
    const TemporaryFolder folder;
    constexpr char askForOwner[] = "getent passwd owner >&2; getent group owner >&2; exit 1";
    const BootedDevice watch(folder.path(), {{ids::service, {"/bin/sh", "-c", askForOwner}}});

    activate(*watch, ids::service);

    const auto log = textOf(watch->layout().log());
    constexpr uid_t ownerOfDevices = 5001; // in root's place, whom the device policy manager refuses
    const uid_t owner = getuid() != 0 ? getuid() : ownerOfDevices;
    const std::string group = std::to_string(getgid());
    EXPECT_NE(log.find("owner:x:" + std::to_string(owner) + ":" + group + ":owner:/:/bin/sh\n"), std::string::npos)
        << log;
    EXPECT_NE(log.find("owner:x:" + group + ":\n"), std::string::npos) << log;
}

TEST(Device, EnvironmentOfTheCallerStaysOutsideExceptForItsSanitizers) {
    setenv("SECRET_OF_THE_CALLER", "1", 1);
    setenv("XSAN_OPTIONS", "verify=0", 1);
    const TemporaryFolder folder;
    const auto environment = Device(folder.path()).appEnvironment("com.example.app");
    EXPECT_EQ(environment.count("SECRET_OF_THE_CALLER"), 0U);
    EXPECT_EQ(environment.at("XSAN_OPTIONS"), "verify=0");
    EXPECT_EQ(environment.at("TESK_APP_ID"), "com.example.app");
    EXPECT_EQ(environment.at("XDG_CONFIG_HOME"), (folder.path() / "config").string());
}

TEST(Device, BootThatHangsKeepsNobodyWaiting) {
    const TemporaryFolder folder;
    const Device watch(folder.path(), std::chrono::seconds(1));
    watch.layout().makeFolders();
    std::ofstream(watch.layout().busConfiguration()) << "<busconfig/>"; // which makes it a watch
    const FileDescriptor other(open(watch.layout().bootLock().c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    ASSERT_EQ(flock(other.get(), LOCK_EX), 0);
    EXPECT_EQ(
        failureOf([&] {
            watch.off();
        }).find("another command that boots or ends " + folder.path().string() + " has not answered for 1 seconds"),
        0U);
}

TEST(Device, ProgramThatCannotBeRunIsNamedWithTheReason) {
    const TemporaryFolder folder;
    const Device watch(folder.path() / "watch");
    const auto script = (folder.path() / "mail.py").string();
    std::ofstream(script) << "#!/usr/bin/python3\n";
    for (const auto& [program, reason] :
         {std::pair<std::string, std::string>("/nowhere/agent", ": No such file or directory"),
          {"/tmp", " is a folder"},
          {script, ": Permission denied; make it executable with: chmod +x " + script}}) {
        EXPECT_EQ(failureOf([&, name = program] { watch.boot(standardApplications(name, {"/bin/true"})); }),
                  std::string("cannot run the program of com.velmor.tesk-agent: ").append(program).append(reason));
    }
    EXPECT_FALSE(watch.isBooted());
}

TEST(Device, MissingBusDaemonIsNamedWithItsPackage) {
    const TemporaryFolder folder;
    std::filesystem::create_symlink("/usr/bin/env", folder.path() / "env");
    setenv("PATH", folder.path().c_str(), 1);
    EXPECT_EQ(failureOf([&] { Device(folder.path() / "watch").boot(someApplications()); }),
              "no dbus-daemon on PATH (apt install dbus-daemon)");
}

TEST(Device, BusThatDoesNotComeUpLeavesNothingBehindAndTellsWhy) {
    const TemporaryFolder folder;
    const auto daemon = folder.path() / "dbus-daemon";
    std::ofstream(daemon) << "#!/bin/sh\necho no room for a bus >&2\nexit 1\n";
    std::filesystem::permissions(daemon, std::filesystem::perms::owner_all);
    setenv("PATH", (folder.path().string() + ":/usr/bin:/bin").c_str(), 1);
    const Device watch(folder.path() / "watch");

    const auto failure = failureOf([&] { watch.boot(someApplications()); });

    EXPECT_EQ(failure, "dbus-daemon did not start: no room for a bus");
    EXPECT_FALSE(watch.isBooted());
    EXPECT_FALSE(std::filesystem::exists(watch.layout().busRecord()));
}

TEST(Device, TwoBootsAtOnceMakeOneWatch) {
    const TemporaryFolder folder;
    const Device watch(folder.path());
    std::string failures[2];
    std::thread other([&] { failures[0] = failureOf([&] { watch.boot(someApplications()); }); });
    failures[1] = failureOf([&] { watch.boot(someApplications()); });
    other.join();
    const auto refused = folder.path().string() + " is already booted";
    EXPECT_EQ(failures[0] + failures[1], refused);
    EXPECT_TRUE(watch.off());
}

TEST(Device, ApplicationsAreReadAsTheyWereGiven) {
    const TemporaryFolder folder;
    const std::vector<Application> given{{ids::service, {"/bin/echo", "a=b", "it's", R"(\e "c" $d)"}},
                                         {ids::popup, {"/bin/true"}}};
    const BootedDevice watch(folder.path(), given);

    auto read = readApplications(watch->layout());

    std::sort(read.begin(), read.end(), [](const auto& one, const auto& other) { return one.id < other.id; });
    ASSERT_EQ(read.size(), given.size());
    EXPECT_EQ(read[0].id, given[0].id);
    EXPECT_EQ(read[0].command, given[0].command);
    EXPECT_EQ(read[1].command, given[1].command);
}

} // namespace
} // namespace deskwatch
