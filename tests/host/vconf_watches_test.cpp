#include <vconf.h>

#include <array>

#include "host_test.h"

namespace {

void tellNews(GVariant* arguments) {
    emitSignal("/ca/desrt/dconf/Writer/user", "ca.desrt.dconf.Writer", "Notify", arguments);
}

void recordNumber(keynode_t* node, void* numbers) {
    static_cast<std::vector<int>*>(numbers)->push_back(vconf_keynode_get_int(node));
}

class VconfWatches : public HostTest {};

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
