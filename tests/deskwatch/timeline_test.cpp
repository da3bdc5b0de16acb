#include "recording/timeline.h"

#include <gmock/gmock.h>

#include <csignal>

#include "commands_fixture.h"
#include "recording/time_order.h"
#include "records/log_line.h"
#include "running_program.h"

namespace deskwatch {
namespace {

struct TimelineRow {
    const char* event;
    const char* kind;
    const char* text;
};

std::ostream& operator<<(std::ostream& stream, const TimelineRow& row) {
    return stream << row.text;
}

class TimelineWords : public testing::TestWithParam<TimelineRow> {};

TEST_P(TimelineWords, TellWhatHappened) {
    const auto entry = timelineEntry(TraceEvent::parse(GetParam().event));
    EXPECT_EQ(entry.kind, GetParam().kind);
    EXPECT_EQ(entry.text, GetParam().text);
    EXPECT_EQ(entry.detail, GetParam().event);
}

INSTANTIATE_TEST_SUITE_P(
    Events, TimelineWords,
    testing::Values(
        TimelineRow{R"({"in":"launch","from":"mail","extraData":{}})", "request", "mail launches the service"},
        TimelineRow{R"({"in":"message","from":"mail","entries":{"req":"go","msg":"abc"}})", "request",
                    "mail sends go with 3 bytes"},
        TimelineRow{R"({"refused":"message","from":"mail","entries":{"req":"go","msg":"abc"}})", "request",
                    "go with 3 bytes from mail is refused: too long"},
        TimelineRow{R"({"in":"reply","from":"popup","extraData":{"result":"ok"}})", "answer", "popup answers ok"},
        TimelineRow{R"({"in":"reply","from":"popup","extraData":{}})", "answer", "popup is closed without an answer"},
        TimelineRow{R"({"in":"key","key":"/vconf/db/a","value":1})", "key", "/vconf/db/a = 1"},
        TimelineRow{R"({"in":"start","application":"mail"})", "process", "mail starts"},
        TimelineRow{R"({"in":"end","application":"agent"})", "process", "agent ends"},
        TimelineRow{R"({"out":"write","key":"/dpm/a","value":null})", "effect", "/dpm/a is removed"},
        TimelineRow{R"({"out":"launch","to":"popup","replyWanted":true,"extraData":{}})", "launch",
                    "the service launches popup"},
        TimelineRow{R"({"out":"message","to":"mail","entries":{"req":"stop"}})", "message",
                    "the service sends stop to mail"},
        TimelineRow{R"({"around":"fault","function":"f","code":-13,"nth":2})", "fault", "f returns -13 at call 2"},
        TimelineRow{R"({"around":"fault","function":"f","code":null,"nth":0})", "fault", "f works again"},
        TimelineRow{R"({"around":"call","method":"ping"})", "call", "diagnostic method ping"}));

TEST(TimelineOutput, TimeIsToldInUtcAndLeftOutWhereItIsNotKnown) {
    auto entry = timelineEntry(std::string_view("W/TESK_CONSUMER(1): a \xff"));
    EXPECT_EQ(timelineJson(entry), "{\"time\":null,\"kind\":\"log\",\"level\":\"W\","
                                   "\"text\":\"W/TESK_CONSUMER(1): a \xEF\xBF\xBD\",\"detail\":null}\n");
    EXPECT_EQ(timelineText(entry), "-             log     W/TESK_CONSUMER(1): a \xEF\xBF\xBD\n");
    entry.time = std::chrono::system_clock::time_point(std::chrono::milliseconds(1'700'000'000'007));
    EXPECT_EQ(timelineJson(entry).find(R"({"time":"2023-11-14T22:13:20.007Z")"), 0U) << timelineJson(entry);
}

TEST(TimeOrder, EarlierEntryThatComesATurnLateTakesItsPlace) {
    std::string told;
    TimeOrder order([&](const TimelineEntry& entry) { told += entry.text; });
    const auto add = [&](int seconds, const char* text) {
        TimelineEntry entry;
        entry.time = std::chrono::system_clock::time_point(std::chrono::seconds(seconds));
        entry.text = text;
        order.add(entry);
    };
    add(9, "future ");
    add(2, "b ");
    order.turn();
    add(1, "a ");
    add(2, "c ");
    EXPECT_EQ(told, "");
    order.turn();
    EXPECT_EQ(told, "a b c future ");
    add(3, "d ");
    order.turn();
    EXPECT_EQ(told, "a b c future ");
    order.end();
    EXPECT_EQ(told, "a b c future d ");
}

class TimelineCommand : public Commands {};

/// Waits for an entry of that kind whose text has that part.
void await(RunningProgram& program, const std::string& kind, const std::string& part) {
    const auto line = program.awaitLine([&](const std::string& text) {
        const auto entry = Json::parse(text);
        return entry["kind"] == kind && entry["text"].get<std::string>().find(part) != std::string::npos;
    });
    EXPECT_TRUE(Json::parse(line)["time"].is_string()) << line;
}

TEST_F(TimelineCommand, FollowsAllThatHappensUntilTheWatchIsOff) {
    boot();
    RunningProgram timeline({"timeline", "--follow", "--json"});
    timeline.nextLine(); // it listens before it tells the past
    RunningProgram fresh({"timeline", "--follow", "--json", "--new"});

    run({"fault", "dpm_password_set_history", "-1"});
    await(timeline, "fault", "dpm_password_set_history returns -1 at every call");
    EXPECT_EQ(deskwatchProgram({"mail", "policy", sample("hardened.json")}).status, 3) << "a setting was refused";
    await(timeline, "request", "req_update_policy");
    await(timeline, "effect", "/dpm/password/minimum-length = 4");
    run({"popup", "sync-off"});
    await(timeline, "answer", "sync_off_ok");
    await(timeline, "message", "req_disable_password_eas_accounts");
    run({"event", "low-memory"});
    await(timeline, "event", "low memory");
    EXPECT_TRUE(Json::parse(fresh.nextLine())["time"].is_string());
    await(fresh, "log", "Low memory!"); // the log and the bus are read side by side
    run({"off"});
    EXPECT_EQ(timeline.waitForEnd(), 0);
}

TEST_F(TimelineCommand, FollowedEntriesAreInTheOrderOfTimeUpToTheEnd) {
    boot();
    RunningProgram timeline({"timeline", "--follow", "--json"});
    timeline.nextLine(); // it listens before it tells the past
    run({"mail", "policy", sample("hardened.json")});
    run({"lock", "password"});
    addLogLine(device().layout().log(), "TEST", "the last words");
    timeline.signal(SIGINT);

    std::vector<std::string> times;
    timeline.awaitLine([&](const std::string& line) {
        const auto entry = Json::parse(line);
        times.push_back(entry["time"].is_string() ? entry["time"].get<std::string>()
                        : times.empty()           ? ""
                                                  : times.back());
        return line.find("the last words") != std::string::npos;
    });
    EXPECT_GT(times.size(), 100U);
    EXPECT_THAT(times, testing::WhenSorted(testing::ContainerEq(times)));
    EXPECT_EQ(timeline.waitForEnd(), -1) << "the signal has ended it";
}

TEST_F(TimelineCommand, PastIsTheLogAndTheInbox) {
    boot();
    run({"mail", "policy", sample("hardened.json")});
    run({"popup", "sync-off"});
    run({"lock", "password"});
    run({"lock", "--wrong", "2"});
    const auto text = run({"timeline"});
    EXPECT_THAT(text, testing::ContainsRegex("[0-9:]{8}[.][0-9]{3}  lock    wrong password, attempt 2 of 10\n"));
    EXPECT_THAT(text, testing::ContainsRegex("[0-9:]{8}[.][0-9]{3}  log     W/TESK_CONSUMER[(]"));
    EXPECT_NE(text.find("message the service sends req_disable_password_eas_accounts"), std::string::npos) << text;
}

} // namespace
} // namespace deskwatch
