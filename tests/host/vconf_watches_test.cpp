#include <message_port.h>
#include <vconf.h>

#include <array>

#include "host_test.h"
#include "platform_owners.h"

namespace {

void tellNews(GVariant* arguments) {
    emitSignal("/ca/desrt/dconf/Writer/user", "ca.desrt.dconf.Writer", "Notify", arguments);
}

void recordNumber(keynode_t* node, void* numbers) {
    static_cast<std::vector<int>*>(numbers)->push_back(vconf_keynode_get_int(node));
}

class VconfWatches : public HostTest {};

TEST_F(VconfWatches, KeyChangeOfThisProcessReachesTheOther) {
    vconf_set_int("db/example/key", 0);
    const auto app = start({"serve"});
    ASSERT_TRUE(app->said("launch"));
    message_port_send_message(appId, "control", bundleOf({{"do", "watch"}, {"key", "db/example/key"}}).get());
    ASSERT_TRUE(app->said("watching"));

    vconf_set_int("db/example/key", 7);

    EXPECT_TRUE(app->said("key db/example/key is 7\n"));
}

TEST_F(VconfWatches, KeyChangeOfTheOtherProcessReachesThisOne) {
    std::vector<int> numbers;
    vconf_set_int("db/example/key", 0);
    vconf_notify_key_changed("db/example/key", recordNumber, &numbers);

    EXPECT_EQ(run({"set-key", "db/example/key", "7"})->status(), 0);

    ASSERT_TRUE(runMainLoopUntil([&] { return !numbers.empty(); }));
    EXPECT_EQ(numbers, std::vector<int>{7});
    int value = 0;
    vconf_get_int("db/example/key", &value);
    EXPECT_EQ(value, 7);
}

TEST_F(VconfWatches, NewsOfAnotherFormIsIgnored) {
    std::vector<int> numbers;
    vconf_set_int("db/example/key", 0);
    vconf_notify_key_changed("db/example/key", recordNumber, &numbers);
    const std::array<const char*, 2> changes{"", nullptr};

    tellNews(g_variant_new("(s)", "/vconf/written/db/example/key"));
    tellNews(g_variant_new("(s^ass)", "", changes.data(), ""));
    EXPECT_EQ(run({"set-key", "db/example/key", "7"})->status(), 0);

    ASSERT_TRUE(runMainLoopUntil([&] { return !numbers.empty(); }));
    EXPECT_EQ(numbers, std::vector<int>{7});
}

TEST_F(VconfWatches, KeyWithAnApostropheIsWatched) {
    std::vector<int> numbers;
    vconf_set_int("db/wearer's/key", 0);
    EXPECT_EQ(vconf_notify_key_changed("db/wearer's/key", recordNumber, &numbers), 0);

    vconf_set_int("db/wearer's/key", 7);

    ASSERT_TRUE(runMainLoopUntil([&] { return !numbers.empty(); }));
    EXPECT_EQ(numbers, std::vector<int>{7});
}

} // namespace
