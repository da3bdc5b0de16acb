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

bool heard(const News& news, std::size_t count) {
    return contract::runUntil([&] { return news.names.size() >= count; });
}

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

TEST(VconfContract, KeyOfAnotherTypeCannotBeRead) {
    vconf_set_str(exampleKey, "7");
    vconf_set_int(otherKey, 7);
    int value = 5;
    EXPECT_EQ(vconf_get_int(exampleKey, &value), -1);
    EXPECT_EQ(value, 5);
    EXPECT_EQ(vconf_get_str(otherKey), nullptr);
}

TEST(VconfContract, KeyOfNoStoreIsRefused) {
    int value = 0;
    for (const char* bad : {"", "db", "example/key", "/db/example", "db/", "db//example"}) {
        EXPECT_EQ(vconf_set_int(bad, 1), -1) << bad;
        EXPECT_EQ(vconf_get_int(bad, &value), -1) << bad;
        EXPECT_EQ(vconf_notify_key_changed(bad, record, nullptr), -1) << bad;
    }
}

TEST(VconfContract, WatchHearsOfAnOwnChangeOnTheMainLoop) {
    News news;
    ASSERT_EQ(vconf_notify_key_changed(exampleKey, record, &news), 0);

    vconf_set_int(exampleKey, 7);
    EXPECT_TRUE(news.names.empty()) << "called inside vconf_set_int";

    ASSERT_TRUE(heard(news, 1));
    EXPECT_EQ(news.names, std::vector<std::string>{exampleKey});
    EXPECT_EQ(news.numbers, std::vector<int>{7});
    EXPECT_EQ(news.texts, std::vector<std::string>{"(null)"});
}

TEST(VconfContract, WatchHearsOfATextToo) {
    News news;
    vconf_notify_key_changed(exampleKey, record, &news);
    vconf_set_str(exampleKey, "encrypted");
    ASSERT_TRUE(heard(news, 1));
    EXPECT_EQ(news.texts, std::vector<std::string>{"encrypted"});
    EXPECT_EQ(news.numbers, std::vector<int>{0});
}

TEST(VconfContract, WatchHearsOfEachChangeOnce) {
    News news;
    vconf_notify_key_changed(exampleKey, record, &news);
    for (int value = 1; value <= 3; ++value) {
        vconf_set_int(exampleKey, value);
        ASSERT_TRUE(heard(news, static_cast<std::size_t>(value)));
    }
    News last;
    vconf_notify_key_changed(otherKey, recordToo, &last);
    vconf_set_int(otherKey, 1);
    ASSERT_TRUE(heard(last, 1));
    EXPECT_EQ(news.numbers, (std::vector<int>{1, 2, 3}));
}

TEST(VconfContract, SeveralCallbacksWatchOneKey) {
    News first;
    News second;
    vconf_notify_key_changed(exampleKey, record, &first);
    vconf_notify_key_changed(exampleKey, recordToo, &second);

    vconf_set_int(exampleKey, 1);

    EXPECT_TRUE(heard(first, 1));
    EXPECT_TRUE(heard(second, 1));
}

TEST(VconfContract, EndedWatchHearsNothing) {
    News ended;
    News other;
    vconf_notify_key_changed(exampleKey, record, &ended);
    vconf_notify_key_changed(exampleKey, recordToo, &other);
    EXPECT_EQ(vconf_ignore_key_changed(exampleKey, record), 0);

    vconf_set_int(exampleKey, 1);

    ASSERT_TRUE(heard(other, 1));
    EXPECT_TRUE(ended.names.empty());
}

TEST(VconfContract, WatchCanEndItself) {
    News once;
    News always;
    vconf_notify_key_changed(exampleKey, recordOnce, &once);
    vconf_notify_key_changed(exampleKey, record, &always);

    vconf_set_int(exampleKey, 1);
    ASSERT_TRUE(heard(always, 1));
    vconf_set_int(exampleKey, 2);
    ASSERT_TRUE(heard(always, 2));

    EXPECT_EQ(once.names.size(), 1U);
}

TEST(VconfContract, WatchCanEndTheNextOne) {
    News first;
    News next;
    vconf_notify_key_changed(exampleKey, endTheOther, &first);
    vconf_notify_key_changed(exampleKey, record, &next);

    vconf_set_int(exampleKey, 1);

    ASSERT_TRUE(heard(first, 1));
    contract::runPending();
    EXPECT_TRUE(next.names.empty());
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
