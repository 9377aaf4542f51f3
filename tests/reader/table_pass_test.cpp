// All tables in one walk over the record stream.
#include "reader/table_pass.h"

#include "fuzz/kit/table_rows.h"
#include "testkit/hand_map.h"
#include "testkit/random_document.h"

namespace jmap::test {
namespace {

const Names kNames = {"a", "b", "ab"};

// For each table path a table with columns of all kinds on all paths and one without columns; when
// `single` is set, also one for each kind and path.
void makeOddMap(HandMap* hand, bool single) {
    constexpr const char* kPaths[] = {"/root",       "/root/a",    "/root/b",
                                      "/root/ab",    "/root/a/a",  "/root/a/b",
                                      "/root/a/b/b", "/root/none", "/root/a/FAKE"};
    const auto addColumns = [&](const char* path, int kind) {
        constexpr VARTYPE kTypes[] = {VAR_ORDINAL, VAR_DOUBLE, VAR_CHAR};
        const VARTYPE type = kTypes[kind % 3];
        for (const char* name : {"x", "retained", "not"}) {
            VARINFO& column = hand->column(name, type, path, type == VAR_CHAR ? 5 : 8);
            column.retain = *name == 'r';
            column.noretain = *name == 'n';
            if (kind >= 3) {
                HandMap::informat(column);
            }
        }
    };
    for (const char* tablePath : {"/root", "/root/a", "/root/a/b", "/root/none", "", "null"}) {
        tablePath = *tablePath == 'n' ? nullptr : tablePath;
        hand->table("no columns", tablePath);
        hand->table("all", tablePath);
        for (const bool all : {true, false}) {
            for (int i = 0; i < (all || single ? 6 * static_cast<int>(std::size(kPaths)) : 0);
                 ++i) {
                if (!all) {
                    hand->table("one", tablePath);
                }
                addColumns(kPaths[i / 6], i % 6);
            }
        }
    }
}

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
