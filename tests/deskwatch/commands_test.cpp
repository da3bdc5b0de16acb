#include <csignal>

#include "commands_fixture.h"
#include "device/application_ids.h"
#include "device/bus_client.h"
#include "device/bus_process.h"
#include "temporary_folder.h"

namespace deskwatch {
namespace {

TEST_F(Commands, PolicyOfTwoAccountsIsStoredEnforcedAndShown) {
    boot();
    run({"mail", "policy", sample("exchange-default.json"), sample("hardened.json")});

    const auto watch = status();

    EXPECT_TRUE(watch["serviceRunning"]);
    ASSERT_EQ(watch["accounts"].size(), 2U);
    EXPECT_EQ(watch["accounts"][1]["account_name"], "bob@bank.example");
    EXPECT_EQ(watch["accounts"][1].size(), 24U);
    EXPECT_EQ(watch["settings"], Json::parse(R"({"quality": 128, "minimum_length": 4,
        "maximum_failed_attempts_for_wipe": 10, "min_complex_chars": 1, "max_inactivity_time_device_lock": 900,
        "expires": 365, "history": 4, "wifi_state": 1, "messaging_state": 1, "popimap_email_state": 1,
        "internal_storage_encryption": 1})"));
    EXPECT_EQ(watch["enforcingAccount"], 2);
    EXPECT_EQ(watch["keys"]["db/eas/password_policy_applied"], 0);
    ASSERT_EQ(watch["launches"].size(), 2U);
    EXPECT_EQ(watch["launches"][0]["application"], ids::popup);
    EXPECT_TRUE(watch["launches"][0]["waiting"]);
    EXPECT_EQ(watch["launches"][0]["extraData"], Json::parse(R"({"OPERATION": "SET_PRIVACY_LOCK",
        "ACCOUNT_NAME": "bob@bank.example", "password_min_length": "4", "password_max_length": "16",
        "allow_simple": "0", "password_required": "1"})"));
    EXPECT_EQ(watch["launches"][1]["application"], ids::encryptionSettings);
}

TEST_F(Commands, StatusOfAFreshWatchStartsNothing) {
    boot();
    const auto watch = status();
    EXPECT_FALSE(watch["serviceRunning"]);
    EXPECT_TRUE(watch["accounts"].empty());
    EXPECT_TRUE(watch["launches"].empty());
    EXPECT_EQ(BusClient(device().busAddress()).daemon().ownedNames(), std::vector<std::string>{"ca.desrt.dconf"});
}

TEST_F(Commands, DeletedAccountIsGone) {
    boot();
    run({"mail", "policy", sample("three-accounts.json")});
    run({"mail", "delete", "2"});
    const auto accounts = status()["accounts"];
    ASSERT_EQ(accounts.size(), 2U);
    EXPECT_EQ(accounts[1]["account_id"], 3);
}

TEST_F(Commands, AnyRequestCanBeSent) {
    boot();
    run({"mail", "send", "chk_password_policy"});
    EXPECT_EQ(status()["launches"][0]["application"], ids::popup);
}

TEST_F(Commands, StateOfTheWatchIsAnOptionOfItsBoot) {
    boot({"--country", "KR", "--encrypted", "--tutorial", "--lock", "pin"});
    const auto keys = status()["keys"];
    EXPECT_EQ(keys["db/rgn/country_iso"], "KR");
    EXPECT_EQ(keys["db/ode/crypto_state"], "encrypted");
    EXPECT_EQ(keys["db/setting/lock_type"], 1);
    EXPECT_EQ(keys["memory/private/com.velmor.hearth/tutorial_is_in_progress"], 1);
}

TEST_F(Commands, FileThatIsNoJsonIsRefusedAndNothingOfTheOthersIsSent) {
    boot();
    const auto file = write("broken.json", "{\n  \"msgId\" \"x\"\n}\n");

    const auto outcome = deskwatchProgram({"mail", "policy", sample("hardened.json"), file.string()});

    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors.find("deskwatch: mail policy: " + file.string() + ":2:13: not valid JSON"), 0U)
        << outcome.errors;
    EXPECT_FALSE(status()["serviceRunning"]);
}

TEST_F(Commands, FileThatIsNoJsonIsSentAllTheSameWhenAskedFor) {
    boot();
    const auto file = write("broken.json", "{\n  \"msgId\" \"x\"\n}\n");
    const auto outcome = deskwatchProgram({"mail", "policy", "--raw", file.string()});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "deskwatch: mail policy: " + file.string() + ": passed over: it is not valid JSON\n");
    EXPECT_TRUE(status()["serviceRunning"]) << "the service has survived it";
}

TEST_F(Commands, ServiceThatDoesNotComeUpIsReportedWithTheLog) {
    boot({"--service", "/bin/false"});
    const auto outcome = deskwatchProgram({"mail", "delete", "1"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors.find("deskwatch: mail delete: "), 0U) << outcome.errors;
    EXPECT_NE(outcome.errors.find(device().layout().log().string()), std::string::npos) << outcome.errors;
}

TEST_F(Commands, PopupsOkOpensTheLockSettings) {
    boot();
    run({"mail", "policy", sample("hardened.json")});

    ask(ids::popup, "Answer", g_variant_new("(s)", "ok"));
    settle(ids::service);
    settle(ids::lockSettings);

    EXPECT_EQ(ask(ids::lockSettings, "Launches"),
              "([('com.velmor.tesk-agent', false, [(b'setting_state', b'eas')])],)");
    EXPECT_EQ(ask(ids::popup, "Launches").find("true"), std::string::npos) << "no answer is owed any more";
}

TEST_F(Commands, PopupsRefusalReachesTheMailApplication) {
    boot();
    settle(ids::mail);
    run({"mail", "policy", sample("hardened.json")});

    ask(ids::popup, "Answer", g_variant_new("(s)", "sync_off_ok"));
    settle(ids::service);
    settle(ids::mail);

    EXPECT_EQ(ask(ids::mail, "Messages"),
              "([('com.velmor.tesk-agent', [(b'req', b'req_disable_password_eas_accounts'), (b'msg', b'')])],)");
}

TEST_F(Commands, AnswerThatNobodyWaitsForIsRefused) {
    boot();
    EXPECT_THROW(ask(ids::popup, "Answer", g_variant_new("(s)", "ok")), std::runtime_error);
}

TEST_F(Commands, NewestWatchIsMeantUnlessAnotherIsNamed) {
    boot({"--country", "FR"});
    const TemporaryFolder other;
    run({"boot", other.path().string(), "--country", "KR"});

    EXPECT_EQ(status()["keys"]["db/rgn/country_iso"], "KR");
    EXPECT_EQ(Json::parse(run(
                  {"--device", device().layout().folder().string(), "status", "--json"}))["keys"]["db/rgn/country_iso"],
              "FR");
    setenv("DESKWATCH_DEVICE", device().layout().folder().c_str(), 1);
    EXPECT_EQ(status()["keys"]["db/rgn/country_iso"], "FR");
    unsetenv("DESKWATCH_DEVICE");

    EXPECT_EQ(run({"off"}), other.path().string() + " is off\n");
    EXPECT_EQ(status()["keys"]["db/rgn/country_iso"], "FR");
}

TEST_F(Commands, OffLeavesNoProcess) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    const auto processes = BusClient(device().busAddress()).daemon().applicationProcesses();
    ASSERT_GE(processes.size(), 4U) << "settings service, service, popup, settings";

    run({"off"});

    for (const auto& process : processes) {
        EXPECT_TRUE(process.waitForEnd(std::chrono::milliseconds::zero())) << process.pid();
    }
}

TEST_F(Commands, ApplicationsEndWhenTheBusIsKilled) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    const auto processes = BusClient(device().busAddress()).daemon().applicationProcesses();

    const auto bus = BusProcess(device().layout().busRecord()).running();
    bus->signal(SIGKILL);

    EXPECT_TRUE(bus->waitForEnd(timeout)) << "it may still be dying when its applications have ended";
    for (const auto& process : processes) {
        EXPECT_TRUE(process.waitForEnd(timeout)) << process.pid();
    }
    EXPECT_EQ(status()["booted"], false);
    EXPECT_EQ(run({"off"}), device().layout().folder().string() + " was already off\n");
}

TEST_F(Commands, StatusWithoutAnyWatchSaysHowToBootOne) {
    const auto outcome = deskwatchProgram({"status"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "deskwatch: status: no watch is booted; boot one with: deskwatch boot\n");
}

TEST_F(Commands, SecondBootIsRefused) {
    boot();
    const auto outcome = deskwatchProgram({"boot", device().layout().folder().string()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "deskwatch: boot: " + device().layout().folder().string() + " is already booted\n");
}

TEST_F(Commands, WrongArgumentsAreToldApartFromFailures) {
    EXPECT_EQ(deskwatchProgram({}).status, 2);
    EXPECT_EQ(deskwatchProgram({"mail"}).status, 2);
    EXPECT_EQ(deskwatchProgram({"boot", "--lock", "chain"}).status, 2);
}

TEST_F(Commands, WrongArgumentIsRefusedInWords) {
    const std::string digits(300, '9');
    const std::string range = " is not a number from 1 to 2147483647\n";
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"boot", "--country", "XX"}, "XX is not a country; an ISO 3166 code has two letters, such as KR\n"},
        {{"boot", "--country", "KOR"}, "KOR is not a country"},
        {{"boot", "--country", ""}, " is not a country"},
        {{"boot", ""}, "an empty name names nothing\n"},
        {{"--device", "", "status"}, "an empty name names nothing\n"},
        {{"launch", ""}, "an empty name names nothing\n"},
        {{"bus", "allowWifi"}, "allowWifi needs a value\n"},
        {{"bus", "ping", "3"}, "ping does not take a value\n"},
        {{"bus", "allowWifi", digits}, "a text of 300 characters is not a number from -2147483648 to 2147483647\n"},
        {{"fault", "vconf_set_int", "-2147483649"}, "-2147483649 is not a number from -2147483648 to 2147483647\n"},
        {{"fault", "printf", "-1"}, "printf is not a function of the platform; fault --list names those that are\n"},
        {{"key", "get", "setting/lock_type"}, "does not end in /; did you mean \"db/setting/lock_type\"?\n"},
        {{"key", "set", "", "1"}, "\"\" is not a key"},
        {{"key", "watch", "db/a", "db/"}, "\"db/\" is not a key"},
        {{"replay", "--shard", "3/2", "x"}, "3/2 names shard 3 of 2"},
        {{"mail", "connect", "notaurl", "--user", "a"}, "\"notaurl\" is not a URL"},
        {{"mail", "connect", "http://a.example", "--user", "a"}, "the password would travel readable"},
        {{"mail", "refresh", "0"}, "0" + range},
        {{"mail", "disconnect", "0"}, "0" + range},
        {{"exchange", "order", "http://[::1]", "bob", "smile"}, "\"smile\" is not an order; the orders are wipe, "},
        {{"exchange", "order", "http://[::1]", "bob", "http"}, "the order http takes a number below 1000\n"},
        {{"exchange", "show", "notaurl"}, "\"notaurl\" is not a URL"},
        {{"lock", "pin", "--length", digits}, "a text of 300 characters" + range},
        {{"lock", "pin", "--length", "0"}, "0" + range},
        {{"key", "watch", "--count", "4x", "db/a"}, "4x" + range},
    };
    for (const auto& [arguments, words] : cases) {
        const auto outcome = deskwatchProgram(arguments);
        EXPECT_EQ(outcome.status, 2) << words;
        EXPECT_NE(outcome.errors.find(words), std::string::npos) << outcome.errors;
        EXPECT_LT(outcome.errors.size(), 250U);
    }
}

TEST_F(Commands, WrongArgumentIsNamedWithWhatThereIs) {
    const auto chain = deskwatchProgram({"boot", "--lock", "chain"});
    EXPECT_EQ(chain.errors.find("--lock: chain not in {none,password,pin}\n"), 0U) << chain.errors;
}

TEST_F(Commands, NameThatIsMisspeltIsProposed) {
    boot();
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"lock", "pin", "--lenght", "4"}, "lock: --lenght is not an option; did you mean \"--length\"?\n"},
        {{"--devise", "x", "status"}, "--devise is not an option; did you mean \"--device\"?\n"},
        {{"log", "--level", "w"}, "w not in {V,D,I,W,E,F}; did you mean \"W\"?\n"},
        {{"event", "low-batery"}, "did you mean \"low-battery\"?\n"},
        {{"bus", "allowWiFi", "0"}, "did you mean \"allowWifi\"?\n"},
        {{"fault", "vconf_set_itn", "-1"}, "did you mean \"vconf_set_int\"?\n"},
        {{"launch", "com.velmor.tesk-agnt"}, "did you mean \"com.velmor.tesk-agent\"?\n"},
        {{"key", "get", "db/setting/locktype"}, "is not set; did you mean \"db/setting/lock_type\"?\n"},
        {{"mail", "send", "chk_pasword_policy"}, "did you mean \"chk_password_policy\"?\n"},
    };
    for (const auto& [arguments, words] : cases) {
        const auto outcome = deskwatchProgram(arguments);
        EXPECT_NE(outcome.status, 0) << words;
        EXPECT_NE(outcome.errors.find(words), std::string::npos) << outcome.errors;
    }
}

TEST_F(Commands, WordThatIsNoCommandIsNamed) {
    const auto outer = deskwatchProgram({"statu", "--json"});
    EXPECT_EQ(outer.status, 2);
    EXPECT_EQ(outer.errors.find("deskwatch: statu is not a command; did you mean \"status\"?\n"), 0U) << outer.errors;
    const auto inner = deskwatchProgram({"mail", "polcy", "file"});
    EXPECT_EQ(inner.status, 2);
    EXPECT_EQ(inner.errors.find("deskwatch: mail: polcy is not a command; did you mean \"policy\"?\n"), 0U)
        << inner.errors;
    const auto option = deskwatchProgram({"--statu"});
    EXPECT_EQ(option.status, 2);
    EXPECT_EQ(option.errors.find("deskwatch: --statu is not an option\n"), 0U) << option.errors;
}

} // namespace
} // namespace deskwatch
