// Opening, rewinding and closing tables.
#include "reader/read_context.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

constexpr const char* kDocument = R"({"a":[{"b":1},{"b":2}]})";
constexpr const char* kRows = "1|1|1\n1|2|2\n";

TEST(ReadInit, FindsATableInAnyCaseAndAlldataByItsExactName) {
    enum OPENED { NONE, TABLE, ALLDATA };
    const struct {
        const char* alldataName;
        std::string name;
        OPENED opened;
    } cases[] = {{"ALLDATA", "a", TABLE},         {"ALLDATA", "A", TABLE},
                 {"ALLDATA", "ALLDATA", ALLDATA}, {"ALLDATA", "", NONE},
                 {"", "ALLDATA", NONE},           {"", "", ALLDATA},
                 {"ALLDATA", "alldata", NONE},    {"ALLDATA", std::string(100, 'a'), NONE}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScanOptions options;
        options.alldata = c.alldataName;
        const Scan scan(kDocument, options);
        const size_t callsBefore = scan.host().calls.size();
        const OpenTable table(scan, c.name);
        EXPECT_QV(c.opened == NONE ? JMAP_NOTABLE : QV_OK, table.status);
        if (c.opened != NONE && table.status == QV_OK) {
            EXPECT_EQ(table.rp()->doAlldata, c.opened == ALLDATA);
            EXPECT_EQ(view(table.rctx->dsname, table.rctx->dsnameLen), c.name);
            EXPECT_EQ(table.rctx->exth, scan.doc()->exth);
        } else {
            EXPECT_EQ(scan.host().calls.size(), callsBefore);  // nothing was made
        }
    }
}

TEST(ReadInit, TakesNullForMapAndParameters) {
    const Scan scan(kDocument);
    EXPECT_QV(JMAP_NOTABLE, OpenTable(scan, nullptr, "a").status);
    std::string name = "a";
    QVEJMAPReadContexth rctx = nullptr;
    const auto open = [&](QVStrSize len) {
        return scan.engine()->ReadInit(scan.doc(), scan.automap(), name.data(), len, nullptr,
                                       &rctx);
    };
    EXPECT_QV(JMAP_NOTABLE, open(-1));
    ASSERT_QV_OK(open(1));
    EXPECT_EQ(Scan::rowsOf(scan.engine(), rctx), kRows);
    EXPECT_QV_OK(scan.engine()->ReadTerm(rctx));
    // Before the last buffer there is neither map nor ALLDATA.
    DSINFO* const alldata = std::exchange(scan.p()->alldataDs, nullptr);
    EXPECT_QV(JMAP_NOTABLE, OpenTable(scan, nullptr, "ALLDATA").status);
    scan.p()->alldataDs = alldata;
}

TEST(ReadInit, OpensTheFirstOfEqualNamesAndKeepsLongOnesCut) {
    const Scan scan("{}");
    HandMap hand;
    const std::string name = std::string(32, 'n') + "17";
    hand.table(name, "/first");
    hand.table(name, "/second");
    const OpenTable table(scan, &hand.map, name);
    ASSERT_QV_OK(table.status);
    EXPECT_EQ(slashes(view(table.rp()->tablePath, table.rp()->tablePathLen)), "/first");
    EXPECT_EQ(view(table.rctx->dsname, table.rctx->dsnameLen), name.substr(0, 32));
    EXPECT_EQ(view(table.rp()->dsname, table.rp()->dsnameLen), name.substr(0, 32));
    EXPECT_EQ(table.rctx->varCount + table.rctx->obsbufLen, 0);
    EXPECT_QV(JMAP_NOTABLE, OpenTable(scan, &hand.map, name.substr(0, 32)).status);
}

// Each allocation fails once: no table is opened, the pool stays, a fresh call succeeds.
TEST(ReadInit, ReportsEveryFailedAllocation) {
    const Scan scan(kDocument);
    uint64_t total = scan.host().requests();
    EXPECT_EQ(scan.rows("a"), kRows);
    total = scan.host().requests() - total;
    EXPECT_GT(total, 10u);
    for (uint64_t n = 1; n <= total; ++n) {
        SCOPED_TRACE(n);
        scan.host().failAllocation(n);
        EXPECT_QV(QV_NOMEM, OpenTable(scan, "a").status);
        EXPECT_EQ(scan.rows("a"), kRows);
    }
    const auto left = scan.host().leftovers();
    EXPECT_EQ(std::count(left.begin(), left.end(), "pool qvejmap read pool"),
              static_cast<int64_t>(total) - 1);
}

TEST(ReadReset, StartsOverButKeepsTheRow) {
    ScanOptions options;
    options.debug = ",READ,-READINIT,READRESET,";
    const Scan scan(kDocument, options);
    {
        OpenTable table(scan, "a", QVEJMAP_RETAIN);
        ASSERT_QV_OK(table.read());
        ASSERT_QV_OK(table.read());
        table.reset();
        EXPECT_EQ(scan.host().notes.back(), "ReadReset ");
        EXPECT_EQ(table.cell(1) + table.cell(2), "22");
        EXPECT_TRUE(table.rp()->obsbufCleared && table.rp()->tablePathSeen);
        EXPECT_EQ(table.rows(), kRows);
    }
    EXPECT_EQ(scan.host().notes.back(), "ReadTerm called");
    EXPECT_EQ(scan.host().calls.back(), "destroy pool qvejmap read pool");
}

}  // namespace
}  // namespace jmap::test
