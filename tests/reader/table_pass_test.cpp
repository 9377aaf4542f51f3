// All tables in one walk over the record stream.
#include "reader/table_pass.h"

#include "fuzz/kit/table_rows.h"
#include "odd_map.h"
#include "testkit/random_document.h"

namespace jmap::test {
namespace {

const Names kNames = {"a", "b", "ab"};

TEST(TablePass, GivesTheRowsOfReadForEveryKindOfTable) {
    HandMap hand;
    makeOddMap(&hand, true);
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const Scan scan(RandomDocument(seed, kNames).text(6));
        fuzz::requireSameRows(scan.doc(), fuzz::tablesOf(scan.doc(), &hand.map));
    }
}

TEST(TablePass, CopiesWhatOutlivesABlock) {
    HandMap hand;
    makeOddMap(&hand, false);
    size_t blocks = 0;
    for (unsigned seed = 0; seed < 4; ++seed) {
        for (const bool compress : {false, true}) {
            SCOPED_TRACE(seed);
            FakeHost host;
            host.setAvailable(0);
            const Scan scan(host, RandomDocument(seed, kNames, 30'000).text(200),
                            {.compress = compress, .cacheFile = scratchFile("c"), .memLeave = 1});
            fuzz::requireSameRows(scan.doc(), fuzz::tablesOf(scan.doc(), &hand.map));
            blocks += scan.blocks().size();
        }
    }
    EXPECT_GT(blocks, 30U);
}

}  // namespace
}  // namespace jmap::test
