#include <gtest/gtest.h>
#include <vconf.h>

#include <string>
#include <vector>

#include "contract_environment.h"
#include "platform_owners.h"

namespace {

constexpr char exampleKey[] = "db/example/key";
constexpr char otherKey[] = "db/example/key_2";

struct News {
    std::vector<std::string> names;
    std::vector<int> numbers;
    std::vector<std::string> texts;
};

void record(keynode_t* node, void* data) {
    auto* news = static_cast<News*>(data);
    news->names.emplace_back(vconf_keynode_get_name(node));
    news->numbers.push_back(vconf_keynode_get_int(node));
    const char* text = vconf_keynode_get_str(node);
    news->texts.emplace_back(text != nullptr ? text : "(null)");
}

void recordToo(keynode_t* node, void* data) {
    record(node, data);
}

void recordOnce(keynode_t* node, void* data) {
    record(node, data);
    vconf_ignore_key_changed(exampleKey, recordOnce);
}

void endTheOther(keynode_t* node, void* data) {
    record(node, data);
    vconf_ignore_key_changed(exampleKey, record);
}

void addAnother(keynode_t* node, void* data) {
    auto* news = static_cast<News*>(data);
    record(node, news);
    vconf_notify_key_changed(exampleKey, record, news + 1);
}

void replaceMyself(keynode_t* node, void* data) {
    record(node, data);
    vconf_ignore_key_changed(exampleKey, replaceMyself);
    vconf_notify_key_changed(exampleKey, record, data);
}

bool heard(const News& news, std::size_t count) {
    return contract::runUntil([&] { return news.names.size() >= count; });
}

/// Returns when the news of all that was written before has been heard.
void settle() {
    static News marker;
    vconf_set_int("memory/marker", 0);
    vconf_notify_key_changed("memory/marker", record, &marker);
    marker = {};
    vconf_set_int("memory/marker", 1);
    EXPECT_TRUE(heard(marker, 1));
}

/// Both keys exist.
class VconfWatchContract : public testing::Test {
protected:
    VconfWatchContract() {
        vconf_set_int(exampleKey, 0);
        vconf_set_int(otherKey, 0);
    }

    static int watch(const char* name, News& news) { return vconf_notify_key_changed(name, record, &news); }
};

TEST(VconfContract, KeepsAnInteger) {
    EXPECT_EQ(vconf_set_int(exampleKey, 42), 0);
    int value = 0;
    EXPECT_EQ(vconf_get_int(exampleKey, &value), 0);
    EXPECT_EQ(value, 42);
}

TEST(VconfContract, KeepsAText) {
    EXPECT_EQ(vconf_set_str(exampleKey, "encrypted"), 0);
    EXPECT_EQ(taken(vconf_get_str(exampleKey)), "encrypted");
}

TEST(VconfContract, LaterValueReplacesTheEarlier) {
    vconf_set_int(exampleKey, 1);
    vconf_set_int(exampleKey, 2);
    int value = 0;
    vconf_get_int(exampleKey, &value);
    EXPECT_EQ(value, 2);
}

TEST(VconfContract, KeysOfAllThreeStoresCanBeSet) {
    EXPECT_EQ(vconf_set_int("db/a", 1), 0);
    EXPECT_EQ(vconf_set_int("file/a", 2), 0);
    EXPECT_EQ(vconf_set_int("memory/a", 3), 0);
}

TEST(VconfContract, KeyThatWasNeverSetCannotBeRead) {
    int value = 5;
    EXPECT_EQ(vconf_get_int(exampleKey, &value), -1);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(vconf_get_str(exampleKey), nullptr);
}

TEST(VconfContract, NumberOfATextCannotBeReadAndIsOverwritten) {
    vconf_set_str(exampleKey, "7");
    int value = 5;
    EXPECT_EQ(vconf_get_int(exampleKey, &value), -1);
    EXPECT_NE(value, 5);
}

TEST(VconfContract, TextOfANumberCannotBeRead) {
    vconf_set_int(exampleKey, 7);
    EXPECT_EQ(vconf_get_str(exampleKey), nullptr);
}

TEST(VconfContract, LaterTextReplacesWhateverWasThere) {
    vconf_set_int(exampleKey, 7);
    for (const std::string& text : {std::string("a longer text"), std::string("short"), std::string(),
                                    std::string("two\nlines\n"), std::string(100000, 'x')}) {
        EXPECT_EQ(vconf_set_str(exampleKey, text.c_str()), 0);
        EXPECT_EQ(taken(vconf_get_str(exampleKey)), text);
    }
}

TEST(VconfContract, KeyOfNoStoreIsRefused) {
    int value = 0;
    for (const char* bad : {"", "db", "example/key", "/db/example", "db/", "db//example"}) {
        EXPECT_EQ(vconf_set_int(bad, 1), -1) << bad;
        EXPECT_EQ(vconf_get_int(bad, &value), -1) << bad;
        EXPECT_EQ(vconf_notify_key_changed(bad, record, nullptr), -1) << bad;
    }
}

TEST(VconfContract, MissingKeyCannotBeWatched) {
    News news;
    EXPECT_EQ(vconf_notify_key_changed(exampleKey, record, &news), -1);
    vconf_set_int(exampleKey, 1);
    settle();
    EXPECT_TRUE(news.names.empty());
}

TEST_F(VconfWatchContract, OwnWriteIsHeardOnTheMainLoop) {
    News news;
    ASSERT_EQ(watch(exampleKey, news), 0);

    vconf_set_int(exampleKey, 7);
    EXPECT_TRUE(news.names.empty()) << "called inside vconf_set_int";

    ASSERT_TRUE(heard(news, 1));
    EXPECT_EQ(news.names, std::vector<std::string>{exampleKey});
    EXPECT_EQ(news.numbers, std::vector<int>{7});
}

TEST_F(VconfWatchContract, NodeHasTheValueOfItsTypeAlone) {
    News news;
    watch(exampleKey, news);
    vconf_set_str(exampleKey, "text");
    ASSERT_TRUE(heard(news, 1));
    vconf_set_int(exampleKey, 4);
    ASSERT_TRUE(heard(news, 2));
    EXPECT_EQ(news.numbers, (std::vector<int>{-1, 4}));
    EXPECT_EQ(news.texts, (std::vector<std::string>{"text", "(null)"}));
}

TEST_F(VconfWatchContract, WriteOfTheSameValueIsHeard) {
    vconf_set_int(exampleKey, 1);
    settle();
    News news;
    watch(exampleKey, news);
    vconf_set_int(exampleKey, 1);
    settle();
    EXPECT_EQ(news.numbers, std::vector<int>{1});
}

TEST_F(VconfWatchContract, WriteOfTheSameValueByAnotherApplicationIsHeard) {
    News news;
    watch(exampleKey, news);
    if (!contract::remote::setKey(exampleKey, 0)) {
        GTEST_SKIP() << "no other application can be started here";
    }
    settle();
    EXPECT_EQ(news.numbers, std::vector<int>{0});
}

TEST_F(VconfWatchContract, WriteBeforeTheWatchIsNotHeard) {
    News first;
    News second;
    watch(otherKey, first);
    vconf_set_int(exampleKey, 1);
    watch(exampleKey, second);
    settle();
    EXPECT_TRUE(second.names.empty());
}

TEST_F(VconfWatchContract, QuickWritesAreHeardOnceWithTheLastValue) {
    News news;
    watch(exampleKey, news);
    vconf_set_int(exampleKey, 1);
    vconf_set_int(exampleKey, 2);
    settle();
    EXPECT_EQ(news.numbers, std::vector<int>{2});
    vconf_set_int(exampleKey, 3);
    vconf_set_str(exampleKey, "now a text");
    settle();
    EXPECT_EQ(news.texts, (std::vector<std::string>{"(null)", "now a text"}));
}

TEST_F(VconfWatchContract, QuickWritesAreHeardTwiceAroundThatOfAnotherWatchedKey) {
    News news;
    watch(exampleKey, news);
    watch(otherKey, news);
    vconf_set_int(exampleKey, 1);
    vconf_set_int(otherKey, 2);
    vconf_set_int(exampleKey, 3);
    settle();
    EXPECT_EQ(news.names, (std::vector<std::string>{exampleKey, otherKey, exampleKey}));
    EXPECT_EQ(news.numbers, (std::vector<int>{3, 2, 3}));
}

TEST_F(VconfWatchContract, WritesThatTheMainLoopRunsBetweenAreHeardEach) {
    News news;
    watch(exampleKey, news);
    for (int value = 1; value <= 3; ++value) {
        vconf_set_int(exampleKey, value);
        ASSERT_TRUE(heard(news, static_cast<std::size_t>(value)));
    }
    settle();
    EXPECT_EQ(news.numbers, (std::vector<int>{1, 2, 3}));
}

TEST_F(VconfWatchContract, SameCallbackWatchesAKeyOnce) {
    News first;
    News second;
    watch(exampleKey, first);
    EXPECT_EQ(watch(exampleKey, second), -1);
    vconf_set_int(exampleKey, 1);
    settle();
    EXPECT_EQ(first.numbers, std::vector<int>{1});
    EXPECT_TRUE(second.names.empty());
}

TEST_F(VconfWatchContract, SeveralCallbacksWatchOneKey) {
    News first;
    News second;
    watch(exampleKey, first);
    vconf_notify_key_changed(exampleKey, recordToo, &second);

    vconf_set_int(exampleKey, 1);

    EXPECT_TRUE(heard(first, 1));
    EXPECT_TRUE(heard(second, 1));
}

TEST_F(VconfWatchContract, WatchThatEndsAfterTheWriteHearsNothing) {
    News ended;
    watch(exampleKey, ended);
    vconf_set_int(exampleKey, 1);
    EXPECT_EQ(vconf_ignore_key_changed(exampleKey, record), 0);
    vconf_set_int(exampleKey, 2);
    settle();
    EXPECT_TRUE(ended.names.empty());
}

TEST_F(VconfWatchContract, WatchCanEndItself) {
    News once;
    News always;
    vconf_notify_key_changed(exampleKey, recordOnce, &once);
    watch(exampleKey, always);

    vconf_set_int(exampleKey, 1);
    ASSERT_TRUE(heard(always, 1));
    vconf_set_int(exampleKey, 2);
    ASSERT_TRUE(heard(always, 2));

    EXPECT_EQ(once.numbers, std::vector<int>{1});
}

TEST_F(VconfWatchContract, WatchAfterTheLastOneEndedHearsTheNextWrite) {
    News news;
    vconf_notify_key_changed(exampleKey, replaceMyself, &news);
    vconf_set_int(exampleKey, 1);
    ASSERT_TRUE(heard(news, 1));
    vconf_set_int(exampleKey, 2);
    settle();
    EXPECT_EQ(news.numbers, (std::vector<int>{1, 2}));
}

TEST_F(VconfWatchContract, WatchThatACallbackEndsIsStillCalledOnce) {
    News first;
    News next;
    vconf_notify_key_changed(exampleKey, endTheOther, &first);
    watch(exampleKey, next);

    vconf_set_int(exampleKey, 1);
    settle();
    vconf_set_int(exampleKey, 2);
    settle();

    EXPECT_EQ(first.numbers, (std::vector<int>{1, 2}));
    EXPECT_EQ(next.numbers, std::vector<int>{1});
}

TEST_F(VconfWatchContract, WatchThatACallbackAddsHearsTheNextWrite) {
    std::vector<News> news(2);
    vconf_notify_key_changed(exampleKey, addAnother, news.data());
    vconf_set_int(exampleKey, 1);
    settle();
    EXPECT_TRUE(news[1].names.empty());
    vconf_set_int(exampleKey, 2);
    settle();
    EXPECT_EQ(news[1].numbers, std::vector<int>{2});
}

TEST(VconfContract, UnknownWatchCannotEnd) {
    EXPECT_EQ(vconf_ignore_key_changed(exampleKey, record), -1);
}

TEST(VconfContract, NullArgumentsFail) {
    int value = 0;
    EXPECT_EQ(vconf_get_int(nullptr, &value), -1);
    EXPECT_EQ(vconf_get_int(exampleKey, nullptr), -1);
    EXPECT_EQ(vconf_set_int(nullptr, 1), -1);
    EXPECT_EQ(vconf_get_str(nullptr), nullptr);
    EXPECT_EQ(vconf_set_str(nullptr, "text"), -1);
    EXPECT_EQ(vconf_set_str(exampleKey, nullptr), -1);
    EXPECT_EQ(vconf_notify_key_changed(nullptr, record, nullptr), -1);
    EXPECT_EQ(vconf_notify_key_changed(exampleKey, nullptr, nullptr), -1);
    EXPECT_EQ(vconf_ignore_key_changed(nullptr, record), -1);
    EXPECT_EQ(vconf_ignore_key_changed(exampleKey, nullptr), -1);
    EXPECT_EQ(vconf_keynode_get_name(nullptr), nullptr);
    EXPECT_EQ(vconf_keynode_get_int(nullptr), 0);
    EXPECT_EQ(vconf_keynode_get_str(nullptr), nullptr);
}

} // namespace
