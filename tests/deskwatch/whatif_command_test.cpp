#include <dconf.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>

#include <array>
#include <csignal>
#include <iterator>
#include <map>

#include "commands_fixture.h"
#include "device/application_ids.h"
#include "device/file_descriptor.h"
#include "running_program.h"

namespace deskwatch {
namespace {

/// A policy that demands a PIN of four digits, which may be a simple one.
constexpr char pinPolicy[] = R"({"msgId": "email-itpolicy-ind", "seqId": 1, "param": [{"accountId": 1,
    "accountName": "alice@contoso.example", "policySet": {"devicePasswordEnabled": true, "allowSimplePassword": true,
    "minDevicePasswordLength": 4, "allowTextMessaging": true, "allowPOPIMAPEmail": true, "allowWifi": true}}]})";

std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// The number that a program writes to a pipe with a name.
int awaitNumber(const std::filesystem::path& pipe) {
    const FileDescriptor descriptor(open(pipe.c_str(), O_RDWR | O_CLOEXEC));
    pollfd entry{descriptor.get(), POLLIN, 0};
    std::array<char, 32> text{};
    const auto most = std::chrono::milliseconds(timeout).count();
    const bool isThere = poll(&entry, 1, static_cast<int>(most)) == 1 && read(entry.fd, text.data(), text.size()) > 0;
    return isThere ? std::atoi(text.data()) : 0;
}

/// All that lies in a folder, with the time of its last change.
std::map<std::string, std::string> everythingIn(const std::filesystem::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const auto changed = std::filesystem::last_write_time(entry).time_since_epoch().count();
        files[entry.path().string()] =
            std::to_string(changed) + (entry.is_regular_file() ? contents(entry.path()) : "");
    }
    return files;
}

Json after(const Json& changes) {
    Json values;
    for (const auto& [name, change] : changes.items()) {
        values[name] = change["after"];
    }
    return values;
}

class Whatif : public Commands {
protected:
    Whatif() { setenv("TMPDIR", temporary_.path().c_str(), 1); }
    ~Whatif() override { unsetenv("TMPDIR"); }

    static Json whatif(const std::vector<std::string>& files) {
        std::vector<std::string> arguments{"whatif", "--json"};
        arguments.insert(arguments.end(), files.begin(), files.end());
        return Json::parse(run(arguments));
    }

    /// Changes a setting of the watch from outside.
    void set(const char* path, int value) const {
        const std::unique_ptr<DConfChangeset, decltype(&dconf_changeset_unref)> change(
            dconf_changeset_new_write(path, g_variant_new_int32(value)), &dconf_changeset_unref);
        const c::VariantOwner serialised(g_variant_ref_sink(dconf_changeset_serialise(change.get())));
        GVariant* bytes = g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, g_variant_get_data(serialised.get()),
                                                    g_variant_get_size(serialised.get()), 1);
        BusClient(device().busAddress())
            .call({"ca.desrt.dconf", "/ca/desrt/dconf/Writer/user", "ca.desrt.dconf.Writer", "Change"},
                  g_variant_new("(@ay)", bytes), timeout);
    }

    const std::filesystem::path& temporary() const { return temporary_.path(); }

private:
    TemporaryFolder temporary_;
};

TEST_F(Whatif, ComesTrue) {
    boot({"--country", "KR"});
    const std::vector<std::string> files{sample("three-accounts.json"), sample("strictest.json")};

    const auto foreseen = whatif(files);
    run({"mail", "policy", files[0], files[1]});
    const auto happened = status();

    EXPECT_EQ(foreseen["settings"]["minimum_length"]["before"], 0);
    EXPECT_EQ(after(foreseen["settings"]), happened["settings"]);
    EXPECT_EQ(after(foreseen["keys"])["pref/tesk-agent/pwd_enforce_account_id"], happened["enforcingAccount"]);
    for (const auto& [field, change] : foreseen["merged"].items()) {
        EXPECT_EQ(change["after"], happened["mergedPolicy"][field]) << field;
    }
    ASSERT_EQ(foreseen["accounts"].size(), happened["accounts"].size());
    ASSERT_EQ(foreseen["screens"].size(), happened["launches"].size());
    EXPECT_EQ(foreseen["screens"].at(0)["extraData"], happened["launches"][0]["extraData"]);
}

TEST_F(Whatif, TouchesNothing) {
    boot();
    write("watch/storage/internal/photo", "x");
    for (const bool isServiceRunning : {false, true}) {
        if (isServiceRunning) {
            run({"mail", "policy", sample("hardened.json")});
        }
        const auto folder = everythingIn(device().layout().folder());
        const auto processes = BusClient(device().busAddress()).daemon().ownedNames();
        const auto list = run({"ls"});

        const auto foreseen = whatif({sample("strictest.json"), sample("remote-wipe.json")});

        EXPECT_EQ(everythingIn(device().layout().folder()), folder);
        EXPECT_EQ(BusClient(device().busAddress()).daemon().ownedNames(), processes);
        EXPECT_EQ(run({"ls"}), list);
        EXPECT_TRUE(std::filesystem::is_empty(temporary()));
        EXPECT_EQ(foreseen["remarks"].back(), sample("remote-wipe.json") + " wipes the internal storage at once");
    }
}

TEST_F(Whatif, ServiceThatIsStartedForAMessageEnforcesWhatIsStored) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    run({"off"});
    boot();

    const auto screens = whatif({sample("exchange-default.json")})["screens"];

    ASSERT_EQ(screens.size(), 4U) << screens;
    EXPECT_EQ(screens[0]["application"], ids::popup);
    EXPECT_EQ(screens[0]["source"], "start of the service");
    EXPECT_EQ(screens[0]["reason"], "asks for a lock for bob@bank.example: the watch has no lock");
    EXPECT_EQ(screens[2]["source"], sample("exchange-default.json"));
}

TEST_F(Whatif, ServiceThatRunsEnforcesWhenTheMessageComes) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    set("/dpm/password/quality", 0);

    const auto unknown = whatif({write("odd.json", R"({"msgId":"odd"})").string()});
    const auto known = whatif({sample("hardened.json")});

    EXPECT_TRUE(unknown["screens"].empty());
    EXPECT_EQ(unknown["settings"]["quality"], Json::parse(R"({"before": 0, "after": 0})"));
    EXPECT_EQ(known["settings"]["quality"], Json::parse(R"({"before": 0, "after": 128})"));
    EXPECT_EQ(known["screens"].at(0)["reason"],
              "asks for a lock for bob@bank.example: a stronger kind of password is required");
    EXPECT_TRUE(known["accounts"].empty()) << "stored as it is already";
}

TEST_F(Whatif, FaultOfTheWatchIsMet) {
    boot();
    for (const bool isServiceRunning : {false, true}) {
        if (isServiceRunning) {
            run({"mail", "check-password"});
        }
        run({"fault", "dpm_password_set_quality", "-13"});

        const auto foreseen = whatif({sample("hardened.json")});

        EXPECT_EQ(foreseen["settings"]["quality"]["after"], 0);
        EXPECT_EQ(foreseen["settings"]["minimum_length"]["after"], 4);
        EXPECT_EQ(foreseen["remarks"].at(0), sample("hardened.json") + ": [EAS] Failed setPasswordQuality(128). [-13]");
    }
}

TEST_F(Whatif, QualityOfAnOldDeviceIsMigrated) {
    boot({"--lock", "pin"});
    const auto file = write("pin.json", pinPolicy).string();
    run({"mail", "policy", file});
    set("/dpm/password/quality", 16);

    const auto foreseen = whatif({file});

    EXPECT_EQ(foreseen["settings"]["quality"], Json::parse(R"({"before": 16, "after": 33})"));
    EXPECT_TRUE(foreseen["screens"].empty()) << foreseen["screens"];
    EXPECT_NE(foreseen["remarks"].at(0).get<std::string>().find("migration"), std::string::npos);
}

TEST_F(Whatif, StoredAccountIsReplaced) {
    boot();
    run({"mail", "policy", sample("exchange-default.json")});
    EXPECT_EQ(whatif({write("pin.json", pinPolicy).string()})["accounts"],
              Json::parse(R"([{"account": 1, "name": "alice@contoso.example", "new": false}])"));
}

TEST_F(Whatif, EveryKindOfMessageIsTaken) {
    boot();
    const auto foreseen = whatif(
        {sample("account-info.json"), sample("init-response.json"), write("odd.json", R"({"msgId":"odd"})").string()});
    EXPECT_FALSE(foreseen["accounts"].empty());
    EXPECT_EQ(foreseen["screens"].back()["source"], sample("init-response.json"));
    EXPECT_NE(foreseen["remarks"].at(0).get<std::string>().find("odd.json: this is not request msgId: odd"),
              std::string::npos);
}

TEST_F(Whatif, TutorialKeepsThePopupClosed) {
    boot({"--tutorial"});
    const auto foreseen = whatif({sample("hardened.json")});
    ASSERT_EQ(foreseen["screens"].size(), 1U);
    EXPECT_EQ(foreseen["screens"].at(0)["application"], ids::encryptionSettings);
    EXPECT_NE(foreseen["remarks"].at(0).get<std::string>().find("tutorial"), std::string::npos);
}

TEST_F(Whatif, ServiceThatDoesNotComeUpIsReported) {
    boot({"--service", "/bin/false"});
    const auto outcome = deskwatchProgram({"whatif", sample("hardened.json")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "deskwatch: whatif: the service of the copied watch ends (start of the service)\n");
    EXPECT_TRUE(std::filesystem::is_empty(temporary()));
}

TEST_F(Whatif, SignalLeavesNoProcessAndNoFolder) {
    const auto announcement = temporary().parent_path() / (temporary().filename().string() + ".up");
    const auto script = write("service", "#!/bin/sh\necho $$ >" + announcement.string() + "\nexec sleep 1000\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    boot({"--service", script.string()});
    for (const int number : {SIGINT, SIGTERM, SIGKILL}) {
        ASSERT_EQ(mkfifo(announcement.c_str(), 0600), 0);
        RunningProgram program({"whatif", sample("hardened.json")});
        const pid_t service = awaitNumber(announcement);
        std::filesystem::remove(announcement);
        ASSERT_GT(service, 0) << "the copy does not start it";

        const auto bus = ProcessHandle::open(getsid(service));
        ASSERT_TRUE(bus);

        program.signal(number);

        EXPECT_EQ(program.waitForEnd(), -1) << "ended by the signal";
        EXPECT_TRUE(bus->waitForEnd(std::chrono::seconds(20)));
        if (number == SIGKILL) { // it cannot do more, and this service does not mind its bus
            kill(service, SIGKILL);
            continue;
        }
        EXPECT_FALSE(ProcessHandle::open(service)) << "the service still comes up";
        EXPECT_TRUE(std::filesystem::is_empty(temporary()));
    }
}

TEST_F(Whatif, ImportedPolicyIsForetoldAndSentAsItsMessageIs) {
    boot();
    const auto file = sample("policies/policies.ini");
    const auto message = (device().layout().folder() / "message.json").string();
    EXPECT_EQ(deskwatchProgram({"import", file, "--policy", "Hardened", "-o", message, "--account", "2"}).status, 0);
    const std::vector<std::string> import{"import", file, "--policy", "Hardened", "--account", "2", "--json"};
    const auto call = [&import](const std::string& option) {
        auto arguments = import;
        arguments.push_back(option);
        return deskwatchProgram(arguments);
    };
    auto foretold = Json::parse(call("--whatif").output);
    auto expected = whatif({message});
    for (auto* const forecast : {&foretold, &expected}) {
        for (auto& screen : (*forecast)["screens"]) {
            screen.erase("source"); // the name of the file
        }
    }
    EXPECT_EQ(foretold, expected);
    EXPECT_EQ(call("--send").output, file + ": account 2 (imported@example.com): stored\n");
    EXPECT_EQ(status()["settings"], after(expected["settings"]));
    deskwatchProgram({"mail", "policy", sample("hardened.json")});
    EXPECT_EQ(call("--send").output, file + ": account 2 (bob@bank.example): unchanged\n") << "the stored name stays";
    for (const auto& [order, obeying] : {std::pair("RemoteWipe", ": deskwatch mail wipe\n"),
                                         std::pair("AccountOnlyRemoteWipe", ": deskwatch mail delete 2\n")}) {
        const auto text = std::string("<Provision><") + order + "/><EASProvisionDoc/></Provision>";
        const auto outcome =
            deskwatchProgram({"import", write("order.xml", text).string(), "--send", "--account", "2"});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.errors.find(obeying), std::string::npos) << outcome.errors;
    }
    EXPECT_EQ(status()["accounts"].size(), 1U);
}

} // namespace
} // namespace deskwatch
