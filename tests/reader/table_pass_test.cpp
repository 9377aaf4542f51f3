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

bool holdsValue(const JMAPPassCell& cell) {
    return cell.fresh && cell.kind != JMAP_CELL_MISSING && cell.kind != JMAP_CELL_COUNT;
}

// Values that came for a column are in its rows, were overwritten, or are left of a row that never
// was complete.
void expectTheColumnsAddUp(const Scan& scan, MAP* map, uint64_t flags, uint64_t* lost) {
    const std::vector<DSINFO*> tables = fuzz::tablesOf(scan.doc(), map);
    JMAPPassh pass = nullptr;
    ASSERT_QV_OK(
        jmapPassOpen(scan.doc(), tables.data(), lengthOf({nullptr, tables.size()}), flags, &pass));
    std::map<std::pair<QVStrSize, QVStrSize>, uint64_t> seen;
    const auto count = [&](QVStrSize table, const JMAPPassCell* cells, QVStrSize size) {
        for (QVStrSize i = 0; i < size; ++i) {
            seen[{table, i}] += holdsValue(cells[i]) ? 1 : 0;
        }
    };
    for (JMAPPassItem item = {}; jmapPassNext(pass, &item) == QV_OK;) {
        if (item.kind == JMAP_PASS_ROW) {
            count(item.table, item.cells, item.cellCount);
        }
    }
    for (size_t t = 1; t < tables.size(); ++t) {  // behind ALLDATA
        const auto table = static_cast<QVStrSize>(t);
        const JMAPPassCell* cells = nullptr;
        QVStrSize size = 0;
        jmapPassLeft(pass, table, &cells, &size);
        count(table, cells, size);
        for (QVStrSize i = 0; i < size; ++i) {
            JMAPPassColumn column = {};
            jmapPassColumn(pass, table, i, &column);
            const uint64_t shown = seen[std::pair(table, i)];
            EXPECT_EQ(column.values, shown + column.overwritten);
            EXPECT_EQ(column.overwritten != 0, column.firstOverwritten != 0);
            EXPECT_LE(column.firstOverwritten + column.overwritten, column.values + 1);
            *lost += column.overwritten + (holdsValue(cells[i]) ? 1 : 0);
        }
    }
    EXPECT_QV_OK(jmapPassClose(pass));
}

TEST(TablePass, LosesNoValueUncounted) {
    HandMap hand;
    makeOddMap(&hand, false);
    uint64_t lost = 0;
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        const Scan scan(RandomDocument(seed, kNames).text(8));
        for (const uint64_t flags : {uint64_t{0}, uint64_t{QVEJMAP_RETAIN}}) {
            expectTheColumnsAddUp(scan, scan.p()->automap, flags, &lost);
            expectTheColumnsAddUp(scan, &hand.map, flags, &lost);
        }
    }
    EXPECT_GT(lost, 1000U);
}

TEST(TablePass, AFailureEndsIt) {
    const Scan scan(RandomDocument(0, kNames, 30'000).text(80), {.compress = true});
    COMPPATHS* const last = scan.p()->ctail;
    ASSERT_NE(scan.p()->chead, last);
    DSINFO* const table = scan.p()->alldataDs;
    std::string garbage(static_cast<size_t>(last->bufLen), '\xFF');
    const auto run = [&](uint64_t failing) {
        scan.host().failAllocation(failing);
        JMAPPassh pass = nullptr;
        JMAPPassItem item = {};
        QVStatus rc = jmapPassOpen(scan.doc(), &table, 1, QVEJMAP_RETAIN, &pass);
        while (rc == QV_OK) {
            rc = jmapPassNext(pass, &item);
        }
        scan.host().failAllocation(0);
        if (pass != nullptr) {
            EXPECT_QV(rc, jmapPassNext(pass, &item)) << "also later";
            EXPECT_QV_OK(jmapPassClose(pass));
        }
        return rc;
    };
    const uint64_t before = scan.host().requests();
    EXPECT_QV(QV_EOF, run(0));
    const uint64_t requests = scan.host().requests() - before;
    for (uint64_t n = 1; n <= requests; ++n) {
        EXPECT_QV(QV_NOMEM, run(n)) << n;
    }
    char* const kept = std::exchange(last->buf, garbage.data());
    EXPECT_QV(QV_NOMEM, run(0));
    last->buf = kept;
    EXPECT_EQ(joined(scan.host().leftovers()).find("qvejmap pass"), std::string::npos);
}

}  // namespace
}  // namespace jmap::test
