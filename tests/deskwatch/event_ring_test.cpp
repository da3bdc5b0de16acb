#include "panel/event_ring.h"

#include <gtest/gtest.h>

namespace deskwatch {
namespace {

class PanelRing : public testing::Test {
protected:
    EventRing ring_{"e"};
};

TEST_F(PanelRing, OfAStateOnlyTheNewestIsToldAndOnlyOnce) {
    auto cursor = ring_.cursorFor("");
    ring_.setState("status", "1");
    ring_.setState("status", "2");
    EXPECT_EQ(ring_.next(cursor), "event: status\ndata: 2\n\n");
    ring_.setState("status", "2");
    EXPECT_EQ(ring_.next(cursor), "");
}

TEST_F(PanelRing, EntriesAreToldInOrderWithTheirIds) {
    ring_.add("1");
    ring_.add("2");
    auto cursor = ring_.cursorFor("");
    EXPECT_EQ(ring_.next(cursor), "id: e-0\nevent: entry\ndata: 1\n\nid: e-1\nevent: entry\ndata: 2\n\n");
}

TEST_F(PanelRing, PageThatComesBackHearsWhatItMissed) {
    ring_.add("1");
    ring_.add("2");
    auto cursor = ring_.cursorFor("e-0");
    EXPECT_EQ(ring_.next(cursor), "id: e-1\nevent: entry\ndata: 2\n\n");
}

TEST_F(PanelRing, IdsOfNobodyBeginAtTheBeginning) {
    ring_.add("1");
    for (const char* id : {"", "old-0", "e-7", "e-", "e-0x", "e-99999999999999999999999"}) {
        auto cursor = ring_.cursorFor(id);
        EXPECT_EQ(ring_.next(cursor).find("id: e-0\n"), 0U) << id;
    }
}

TEST_F(PanelRing, SlowPageIsToldHowManyEntriesItLost) {
    auto cursor = ring_.cursorFor("");
    for (std::size_t index = 0; index < EventRing::mostEntries + 3; ++index) {
        ring_.add("x");
    }
    EXPECT_EQ(ring_.next(cursor).find("event: lost\ndata: 3\n\nid: e-3\n"), 0U);
}

TEST_F(PanelRing, LargeEntriesDoNotGrowWithoutBound) {
    const std::string large(EventRing::mostBytes / 4, 'x');
    for (int index = 0; index < 6; ++index) {
        ring_.add(large);
    }
    auto cursor = ring_.cursorFor("");
    EXPECT_EQ(cursor.entry, 2U);
    const auto once = ring_.next(cursor);
    EXPECT_LT(once.size(), large.size() + 100); // what is on its way is one entry
    EXPECT_FALSE(ring_.next(cursor).empty());
}

} // namespace
} // namespace deskwatch
