#include <glib.h>

#include <csignal>
#include <iterator>

#include "c_owners.h"
#include "commands_fixture.h"
#include "device/application_ids.h"
#include "recording/recorded_text.h"

namespace deskwatch {
namespace {

std::string textOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    return {std::istreambuf_iterator<char>(stream), {}};
}

/// A recording that runs beside the test.
class RunningRecord {
public:
    explicit RunningRecord(const std::filesystem::path& file, const char* option = nullptr) {
        GError* error = nullptr;
        process_.reset(g_subprocess_new(G_SUBPROCESS_FLAGS_STDERR_PIPE, &error, DESKWATCH_PROGRAM, "record",
                                        file.c_str(), option, nullptr));
        EXPECT_NE(process_, nullptr) << c::takeMessage(error);
        const c::ObjectOwner<GDataInputStream> errors(
            g_data_input_stream_new(g_subprocess_get_stderr_pipe(process_.get())));
        const c::MemoryOwner<char> line(g_data_input_stream_read_line(errors.get(), nullptr, nullptr, nullptr));
        EXPECT_EQ(line != nullptr ? line.get() : "", "recording to " + file.string() + "; ^C or deskwatch off ends it");
    }

    ~RunningRecord() { g_subprocess_force_exit(process_.get()); }
    RunningRecord(const RunningRecord&) = delete;
    RunningRecord& operator=(const RunningRecord&) = delete;

    void interrupt() const { g_subprocess_send_signal(process_.get(), SIGINT); }

    int status() const {
        g_subprocess_wait(process_.get(), nullptr, nullptr);
        return g_subprocess_get_if_exited(process_.get()) != FALSE ? g_subprocess_get_exit_status(process_.get()) : -1;
    }

private:
    c::ObjectOwner<GSubprocess> process_;
};

class Recordings : public Commands {
protected:
    /// From the first policy to the wearer's last answer.
    std::filesystem::path recordStory() const {
        auto file = write("story.jsonl", "");
        boot({"--country", "KR"});
        const RunningRecord recording(file);
        run({"mail", "policy", sample("hardened.json"), sample("open-source-server.json")});
        run({"popup", "ok"});
        run({"lock", "password"});
        run({"encrypt"});
        run({"mail", "policy", sample("strictest.json")});
        run({"popup", "sync-off"});
        run({"mail", "delete", "4"});
        run({"off"});
        EXPECT_EQ(recording.status(), 0);
        return file;
    }
};

TEST_F(Recordings, FileThatHoldsSomethingIsReplacedOnlyByForce) {
    const auto file = write("story.jsonl", "kept\n");
    boot();
    const auto outcome = deskwatchProgram({"record", file.string()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "deskwatch: record: " + file.string() + " exists already; --force replaces it\n");
    EXPECT_EQ(textOf(file), "kept\n");

    const RunningRecord recording(file, "--force");
    recording.interrupt();

    EXPECT_EQ(recording.status(), 0);
    EXPECT_EQ(textOf(file).find("kept"), std::string::npos);
}

TEST_F(Recordings, WearersStoryReplaysWithEveryEffectEqual) {
    const auto file = recordStory();
    const auto text = textOf(file);
    EXPECT_NE(text.find(R"({"in":"reply","from":"com.velmor.tesk-popup","extraData":{"result":"ok"}})"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find(R"({"out":"write","key":"/dpm/password/minimum-length","value":6})"), std::string::npos)
        << text;
    EXPECT_NE(text.find(R"({"out":"message","to":"com.velmor.quillon.consumer")"), std::string::npos) << text;

    const auto replayed = run({"replay", file.string()});

    EXPECT_EQ(replayed.find("all "), 0U) << replayed;
    EXPECT_GT(std::stoi(replayed.substr(4)), 40) << replayed;
}

TEST_F(Recordings, MessageThatThePortRefusesAsTooLongIsNoInput) {
    const auto file = write("long.jsonl", "");
    boot();
    run({"bus", "ping"});
    const RunningRecord recording(file);
    const auto send = [this](std::size_t size) {
        const c::MemoryOwner<char> message(g_strnfill(size, 'x'));
        const BusClient bus(device().busAddress());
        bus.call({ids::service, "/tesk/host/application", "tesk.host.MessagePort", "Send"},
                 g_variant_new_parsed("(%s, 'mail', [(b'msg', %^ay)])", ids::policyPort, message.get()), timeout);
    };
    EXPECT_THROW(send(12224), std::runtime_error);
    send(12223);
    run({"off"});
    EXPECT_EQ(recording.status(), 0);
    const auto text = textOf(file);
    EXPECT_NE(text.find(R"({"in":"message")"), std::string::npos) << text;
    EXPECT_EQ(text.find(R"("message")"), text.rfind(R"("message")")) << text;
}

TEST_F(Recordings, WipeThatIsNotDoneIsADifference) {
    const auto file = write("wiped.jsonl", "");
    boot();
    const RunningRecord recording(file);
    run({"mail", "wipe"});
    run({"off"});
    EXPECT_EQ(recording.status(), 0);
    const auto text = textOf(file);
    const auto wipe = text.find(R"({"out":"wipe","storage":"internal"})");
    ASSERT_NE(wipe, std::string::npos) << text;
    EXPECT_EQ(deskwatchProgram({"replay", file.string()}).status, 0);

    const std::string refusal = R"({"around":"fault","function":"dpm_security_wipe_data","code":-13,"nth":0})";
    auto refused = text;
    refused.insert(refused.find(R"({"in":"message")"), refusal + "\n");
    const auto outcome = deskwatchProgram({"replay", write("refused.jsonl", refused).string()});

    EXPECT_EQ(outcome.status, 1);
    const auto line = 2 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(wipe), '\n');
    EXPECT_NE(outcome.errors.find("refused.jsonl:" + std::to_string(line) + ": "), std::string::npos) << outcome.errors;
}

TEST_F(Recordings, ReplayFindsEachKindOfDifferenceWhereItIsFirst) {
    const std::string recorded = textOf(std::string(SOURCE_FOLDER) + "/tests/recordings/wearer-story.jsonl");
    const auto lineOf = [](const std::string& text, std::size_t place) {
        return 1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(place), '\n');
    };
    const auto replayed = [&](const std::string& text) {
        return deskwatchProgram({"replay", write("changed.jsonl", text).string()}).errors;
    };
    const auto launch = recorded.find(R"({"out":"launch")");
    const auto write = recorded.find(R"({"out":"write")");
    const auto last = recorded.rfind(R"({"out":"write")");
    ASSERT_LT(write, launch);

    auto both = recorded; // a launch comes first by name, a write in time
    both.replace(both.find(R"("to":")", launch) + 6, 3, "xxx");
    both.replace(both.find("\"value\":", write) + 8, 1, "7");
    auto shorter = recorded;
    shorter.erase(last, recorded.find('\n', last) + 1 - last);
    auto elsewhere = recorded;
    elsewhere.replace(elsewhere.find(R"("to":")", launch) + 6, 3, "xxx");

    const std::string line = "changed.jsonl:" + std::to_string(lineOf(recorded, write)) + ": ";
    EXPECT_NE(replayed(both).find(line), std::string::npos) << replayed(both);
    EXPECT_NE(replayed(shorter).find("recorded  nothing\n"), std::string::npos) << replayed(shorter);
    EXPECT_NE(replayed(elsewhere).find("recorded  nothing\n"), std::string::npos) << replayed(elsewhere);
}

TEST_F(Recordings, EndOfTheServiceIsReplayed) {
    const auto file = write("end.jsonl", "");
    boot();
    const RunningRecord recording(file);
    run({"mail", "policy", sample("hardened.json")});
    const auto endService = [this] {
        const auto pid = BusClient(device().busAddress()).daemon().processOf("com.velmor.tesk-agent");
        const auto service = ProcessHandle::open(pid.value());
        service->signal(SIGTERM);
        ASSERT_TRUE(service->waitForEnd(timeout));
    };
    endService();
    run({"mail", "send", "req_delete_account", "2\xff"});
    endService(); // nothing is left to wait for, so it was about to
    recording.interrupt();
    EXPECT_EQ(recording.status(), 0);

    const auto text = textOf(file);
    EXPECT_NE(text.find(R"({"in":"end","application":"com.velmor.tesk-agent","how":"exit"})"), std::string::npos);
    EXPECT_NE(text.find(R"({"in":"end","application":"com.velmor.tesk-agent","how":"idle"})"), std::string::npos);
    EXPECT_NE(text.find(R"("msg":"2\u001aff")"), std::string::npos) << text;
    EXPECT_EQ(run({"replay", file.string()}).find("all "), 0U);
}

TEST(RecordedText, EveryTextComesBackAndUtf8IsReadable) {
    EXPECT_EQ(recordedText("Gr\xc3\xbc\xc3\x9f"
                           "e\n"),
              "Gr\xc3\xbc\xc3\x9f"
              "e\n");
    for (const std::string text : {"", "\xff", "caf\xe9", "\xc3", "a\x1a",
                                   "\x1a"
                                   "1a",
                                   "\x1a"
                                   "f",
                                   "\xed\xa0\x80", "\xf4\x90\x80\x80"}) {
        const auto recorded = recordedText(text);
        EXPECT_TRUE(g_utf8_validate(recorded.c_str(), -1, nullptr)) << recorded;
        EXPECT_EQ(textOfRecorded(recorded), text);
    }
}

TEST(RecordedText, MarkWithoutDigitsIsItselfInAnEarlierRecording) {
    EXPECT_EQ(textOfRecorded("\x1a and \x1a"
                             "0"),
              "\x1a and \x1a"
              "0");
}

TEST_F(Recordings, AnyStateIsTakenAndNamesOfAccountsAreReplaced) {
    const auto file = write("late.jsonl", "");
    boot();
    run({"mail", "policy", sample("hardened.json")});
    run({"fault", "dpm_password_set_history", "-13"});
    const RunningRecord recording(file, "--anonymise");
    run({"popup", "ok"}); // it was opened before
    run({"event", "low-memory"});
    run({"bus", "allowWifi", "0"});
    run({"fault", "--clear"});
    run({"kill"});
    run({"mail", "check-password"});
    recording.interrupt();
    EXPECT_EQ(recording.status(), 0);

    const auto text = textOf(file);
    EXPECT_EQ(text.find("bob@"), std::string::npos);
    for (const std::string part :
         {R"("account_name":"account1@example.com")", R"("ACCOUNT_NAME":"account1@example.com")",
          R"("/faults/com.velmor.tesk-agent/dpm_password_set_history":{"value":"(-13)",
          R"({"around":"event","type":"low memory"})", R"({"around":"call","method":"allowWifi","value":0})",
          R"({"around":"fault","function":"every function","code":null,"nth":0})",
          R"({"in":"end","application":"com.velmor.tesk-agent","how":"kill"})"}) {
        EXPECT_NE(text.find(part), std::string::npos) << part << text;
    }
    EXPECT_EQ(run({"replay", file.string()}).find("all "), 0U);
}

} // namespace
} // namespace deskwatch
