// The tables of a map by position and by name.
#include "automap/map_index.h"

#include "scan/path_text.h"
#include "testkit/chosen_names.h"
#include "testkit/hand_map.h"

namespace jmap::test {
namespace {

bool sameBytes(JMAP_PRIVATE* /*p*/, std::string_view a, std::string_view b) {
    return a == b;
}

bool sameInAnyCase(JMAP_PRIVATE* /*p*/, std::string_view a, std::string_view b) {
    return charNormCompare(a.data(), lengthOf(a), b.data(), lengthOf(b)) != 0;
}

// Every look-up gives what a walk along the list gives, while the map grows and its last table is
// yet to be named, and when there is no memory for an index.
TEST(MapIndex, FindsWhatAWalkFinds) {
    HandDocument document;
    JMAP_PRIVATE* p = &document.p;
    HandMap indexed, walked;
    for (uint64_t i = 0; i < 10 * kWalkedTables; ++i) {
        for (HandMap* hand : {&indexed, &walked}) {
            SCOPED_TRACE(i);
            document.host.failAllocation(hand == &walked ? 1 : 0, true);
            hand->table("");
            DSINFO* last = tableAt(p, &hand->map, i);
            ASSERT_EQ(last, hand->map.dstail);
            EXPECT_EQ(findTable(p, &hand->map, "t", sameInAnyCase), nullptr);
            // t0, T0, T1, t1, T1, T2, ...
            const std::string name = (i % 3 == 0 ? "t" : "T") + std::to_string((i + 1) / 3);
            last->nameLen = static_cast<QVStrSize>(name.copy(last->name, sizeof last->name));
            const auto tables = each(hand->map.dshead);
            for (const uint64_t at : {i, i / 2, i / 3}) {
                const DSINFO& some = *tableAt(p, &hand->map, at);
                const std::string_view wanted = view(some.name, some.nameLen);
                for (SAMENAME* same : {sameBytes, sameInAnyCase}) {
                    auto first = tables.begin();
                    for (; !same(p, view((*first).name, (*first).nameLen), wanted); ++first) {
                    }
                    EXPECT_EQ(findTable(p, &hand->map, wanted, same), &*first);
                }
            }
            EXPECT_EQ(tableAt(p, &hand->map, i + 1), nullptr);
        }
    }
    EXPECT_GT(indexed.map.index.count, 8 * kWalkedTables);
    EXPECT_EQ(walked.map.index.count, 0);
}

// Names that collide under a known hash must not make a bucket a list of all.
TEST(MapIndex, HasShortBucketsForNamesThatWereChosen) {
    HandDocument document;
    HandMap hand;
    for (const std::string& name : chosenNames(1000)) {
        hand.table(name);
    }
    EXPECT_EQ(findTable(&document.p, &hand.map, "none", sameBytes), nullptr);
    const MAPINDEX& index = hand.map.index;
    uint64_t steps = 0;  // to find each table once
    for (uint64_t i = 0; i < index.size; ++i) {
        uint64_t depth = 0;
        for (uint32_t at = index.buckets[i]; at != 0; at = index.slots[at - 1].next) {
            steps += ++depth;
        }
    }
    EXPECT_EQ(index.linked, 999U);       // the last one is never in it
    EXPECT_LT(steps, 5 * index.linked);  // one and a half each is to be expected
}

}  // namespace
}  // namespace jmap::test
