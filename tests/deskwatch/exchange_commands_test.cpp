#include <csignal>
#include <functional>

#include "commands_fixture.h"
#include "running_program.h"

namespace deskwatch {
namespace {

using Words = std::vector<std::string>;

/// A desk server with policies for alice and bob, and a watch.
class ExchangeCommands : public Commands {
protected:
    ExchangeCommands() {
        setenv("DESKWATCH_PASSWORD", "not for the disk", 1);
        boot();
        const auto line = server_.nextLine();
        url_ = line.substr(line.find("http"));
    }

    ~ExchangeCommands() override { unsetenv("DESKWATCH_PASSWORD"); }

    void demandLength(const char* user, int length) const {
        write(std::string(user) + ".xml", "<EASProvisionDoc><DevicePasswordEnabled>1</DevicePasswordEnabled>"
                                          "<MinDevicePasswordLength>" +
                                              std::to_string(length) + "</MinDevicePasswordLength></EASProvisionDoc>");
    }

    /// Connects an account without waiting for the wearer.
    std::string connect(const std::string& user) const {
        return run({"mail", "connect", url_, "--user", user, "--no-wait"});
    }

    /// Returns when the server has been told so of a user.
    void awaitServer(const std::string& user, const std::string& words) {
        server_.awaitLine([&](const std::string& line) {
            return line.rfind(user + " ", 0) == 0 && line.find(words) != std::string::npos;
        });
    }

    static Outcome refresh(const std::string& account) { return deskwatchProgram({"mail", "refresh", account}); }

    std::string known() const { return run({"exchange", "show", url_}); }

    const std::string& url() const { return url_; }

private:
    std::string policy(const char* user) const {
        demandLength(user, 6);
        return std::string(user) + "=" + write("none", "").parent_path().string() + "/" + user + ".xml";
    }

    RunningProgram server_{{"exchange", "serve", policy("alice"), policy("bob")}};
    std::string url_;
};

TEST_F(ExchangeCommands, TwoAccountsFromTheFirstPolicyToTheWipe) {
    demandLength("alice", 4);
    EXPECT_NE(connect("alice").find("account 1 (alice@127.0.0.1): stored\n"), std::string::npos);
    {
        RunningProgram bob({"mail", "connect", url(), "--user", "bob", "--name", "bob@bank.example"});
        bob.awaitLine(
            [](const std::string& line) { return line == "bob@bank.example: account 2 (bob@bank.example): stored"; });
        run({"lock", "pin"});
        EXPECT_EQ(bob.nextLine(), "bob@bank.example: acknowledged with 1, the policy is applied");
        EXPECT_EQ(bob.waitForEnd(), 0);
    }
    EXPECT_EQ(run({"mail", "refresh"}), "alice@127.0.0.1: the server still waits for the report on its last policy\n"
                                        "alice@127.0.0.1: acknowledged with 1, the policy is applied\n"
                                        "bob@bank.example: nothing has changed\n");

    demandLength("bob", 8);
    {
        RunningProgram bob({"mail", "refresh", "2"});
        bob.awaitLine([](const std::string& line) { return line.find("updated") != std::string::npos; });
        run({"popup", "sync-off"});
        EXPECT_EQ(bob.waitForEnd(), 3);
    }
    awaitServer("bob", "acknowledges the policy with 3");
    EXPECT_EQ(run({"mail", "refresh", "1"}), "alice@127.0.0.1: nothing has changed\n");

    run({"exchange", "order", url(), "alice", "wipe"});
    EXPECT_EQ(run({"mail", "refresh", "1"}), "alice@127.0.0.1: the server orders to wipe the watch\n"
                                             "alice@127.0.0.1: the internal storage: wiped\n");
    EXPECT_NE(known().find("reported with 1"), std::string::npos);
    EXPECT_EQ(refresh("2").errors.find("deskwatch: mail refresh: account 2 is not connected"), 0U);
}

TEST_F(ExchangeCommands, RefreshGoesOnAfterTheWatchWasOff) {
    connect("bob");
    run({"off"});
    boot();
    run({"lock", "pin"});
    EXPECT_EQ(refresh("1").status, 0);
    EXPECT_EQ(run({"mail", "refresh", "1"}), "bob@127.0.0.1: nothing has changed\n");
    EXPECT_EQ(run({"mail", "disconnect", "1"}), "bob@127.0.0.1: account 1: deleted\n");
    EXPECT_TRUE(status()["accounts"].empty());
}

TEST_F(ExchangeCommands, WatchOrCommandThatEndsWhileTheWearerIsAskedLosesNothing) {
    const std::function<void(RunningProgram&)> ends[]{
        [](RunningProgram&) { run({"off"}); },
        [this](RunningProgram&) { device().kill(); },
        [](RunningProgram& command) { command.signal(SIGKILL); },
    };
    const Words first{"mail", "connect", url(), "--user", "bob"};
    const Words later{"mail", "refresh", "1"};
    for (const auto& end : ends) {
        RunningProgram waiting(&end == ends ? first : later);
        waiting.awaitLine([&](const std::string& line) {
            return line.find(&end == ends ? "account 1 (bob@127.0.0.1): stored" : "the server still waits") !=
                   std::string::npos;
        });
        EXPECT_EQ(refresh("1").errors,
                  "deskwatch: mail refresh: another command is at account 1; two handshakes of one "
                  "account would spoil each other's keys\n");
        end(waiting);
        EXPECT_NE(waiting.waitForEnd(), 0);
        if (!device().isBooted()) {
            boot();
        }
    }
    run({"lock", "pin", "--length", "8"});
    EXPECT_NE(run({"mail", "refresh", "1"}).find("acknowledged with 1, the policy is applied"), std::string::npos);
}

TEST_F(ExchangeCommands, WipeThatIsOrderedBetweenThePhasesIsObeyed) {
    connect("bob");
    run({"exchange", "order", url(), "bob", "wipe"});
    run({"lock", "pin", "--length", "8"});
    EXPECT_NE(run({"mail", "refresh", "1"}).find("the internal storage: wiped\n"), std::string::npos);
    EXPECT_NE(known().find("reported with 1"), std::string::npos);
}

TEST_F(ExchangeCommands, PolicyThatChangesBetweenThePhasesIsAskedForAgain) {
    connect("bob");
    run({"exchange", "order", url(), "bob", "policy-status", "5"});
    demandLength("bob", 8);
    run({"lock", "pin", "--length", "8"});
    RunningProgram bob({"mail", "refresh", "1"});
    bob.awaitLine([](const std::string& line) { return line.find("has another policy by now") != std::string::npos; });
    bob.awaitLine([](const std::string& line) { return line.find("updated") != std::string::npos; });
    run({"lock", "password", "--length", "8"});
    EXPECT_EQ(bob.waitForEnd(), 0);
}

TEST_F(ExchangeCommands, UserWithoutAPolicyStaysConnected) {
    EXPECT_NE(connect("carol").find("the server has no policy for this user"), std::string::npos);
    EXPECT_EQ(run({"mail", "refresh"}), "carol@127.0.0.1: nothing has changed\n");
    EXPECT_TRUE(status()["accounts"].empty());
    connect("bob");
    const auto listed = Json::parse(run({"mail", "servers", "--json"}));
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed[0]["policy"], "no policy set");
    EXPECT_EQ(listed[1]["policy"], "not acknowledged yet");
}

TEST_F(ExchangeCommands, OrderToRemoveTheAccountLeavesTheWatchAlone) {
    connect("alice");
    connect("bob");
    run({"lock", "pin"});
    run({"mail", "refresh"});
    run({"exchange", "order", url(), "bob", "account-wipe"});
    EXPECT_NE(run({"mail", "refresh", "2"}).find("account 2: deleted"), std::string::npos);
    EXPECT_EQ(status()["accounts"].size(), 1U);
    EXPECT_NE(known().find("reported with 1"), std::string::npos);
}

TEST_F(ExchangeCommands, PasswordIsNowhereOnTheWatch) {
    connect("bob");
    const auto folder = device().layout().folder().string();
    EXPECT_EQ(std::system(("grep -rq 'not for the disk' " + folder).c_str()), 256) << "grep found it";
    unsetenv("DESKWATCH_PASSWORD");
    const auto file = write("password", "another\r\nsecond line\n");
    EXPECT_EQ(run({"mail", "refresh", "--no-wait", "--password-file", file.string()})
                  .find("bob@127.0.0.1: the server still waits"),
              0U);
    const auto missing = deskwatchProgram({"mail", "refresh", "--password-file", "/no/such/file"});
    EXPECT_EQ(missing.errors, "deskwatch: mail refresh: cannot read a password from /no/such/file\n");
}

TEST_F(ExchangeCommands, WrongVersionsAndFilesAreRefused) {
    EXPECT_EQ(deskwatchProgram({"mail", "connect", url(), "--user", "bob", "--protocol", "13"}).status, 2);
    EXPECT_EQ(deskwatchProgram({"exchange", "serve", "/no/such/policy.xml"}).errors,
              "deskwatch: exchange serve: cannot read /no/such/policy.xml: No such file or directory\n");
}

} // namespace
} // namespace deskwatch
