#include "commands_fixture.h"
#include "running_program.h"
#include "session/shared_keys.h"

namespace deskwatch {
namespace {

class KeyCommands : public Commands {};

TEST_F(KeyCommands, KeyHasTheValueThatItWasSetTo) {
    boot();
    run({"key", "set", "db/rgn/country_iso", "KR"});
    EXPECT_EQ(run({"key", "get", "db/rgn/country_iso"}), "KR\n");
    EXPECT_EQ(run({"key", "get", "--json", "db/setting/lock_type"}),
              "{\"key\":\"db/setting/lock_type\",\"value\":0}\n");
}

TEST_F(KeyCommands, NumberCanBeSetAsAText) {
    boot();
    run({"key", "set", "--text", "db/test/number", "42"});
    EXPECT_EQ(run({"key", "get", "--json", "db/test/number"}), "{\"key\":\"db/test/number\",\"value\":\"42\"}\n");
}

TEST_F(KeyCommands, ChangeOfAKeysTypeIsRemarkedOn) {
    boot();
    EXPECT_EQ(deskwatchProgram({"key", "set", "db/setting/lock_type", "pin"}).errors,
              "warning: db/setting/lock_type was a number and is a text now\n");
    EXPECT_EQ(deskwatchProgram({"key", "set", "db/setting/lock_type", "1"}).errors,
              "warning: db/setting/lock_type was a text and is a number now (--text keeps it a text)\n");
    EXPECT_EQ(deskwatchProgram({"key", "set", "db/setting/lock_type", "--text", "1"}).errors, "");
}

TEST_F(KeyCommands, KeyThatIsNotSetFails) {
    boot();
    const auto outcome = deskwatchProgram({"key", "get", "db/nothing/here"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "deskwatch: key get: db/nothing/here is not set\n");
}

TEST_F(KeyCommands, KeyThatWasNeverSetCannotBeWatched) {
    boot();
    const auto outcome = deskwatchProgram({"key", "watch", "db/test/text"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find("cannot watch db/test/text: it was never set"), std::string::npos) << outcome.errors;
}

TEST_F(KeyCommands, WatchTellsTheValueAndItsChanges) {
    boot();
    run({"key", "set", "db/test/text", "old"});
    RunningProgram watch({"key", "watch", "--count", "4", "db/setting/lock_type", "db/test/text"});
    EXPECT_EQ(watch.nextLine(), "db/setting/lock_type 0");
    EXPECT_EQ(watch.nextLine(), "db/test/text old");

    run({"lock", "pin"});
    run({"key", "set", "db/test/text", "new"});

    EXPECT_EQ(watch.nextLine(), "db/setting/lock_type 1");
    EXPECT_EQ(watch.nextLine(), "db/test/text new");
    EXPECT_EQ(watch.waitForEnd(), 0);
}

TEST(TypedValue, IsANumberOnlyWhenAllOfItIsOne) {
    EXPECT_EQ(typedValue("42"), Value(42));
    EXPECT_EQ(typedValue("-1"), Value(-1));
    EXPECT_EQ(typedValue("42a"), Value(std::string("42a")));
    EXPECT_EQ(typedValue("4.2"), Value(std::string("4.2")));
    EXPECT_EQ(typedValue("99999999999"), Value(std::string("99999999999")));
    EXPECT_EQ(typedValue(""), Value(std::string()));
}

} // namespace
} // namespace deskwatch
