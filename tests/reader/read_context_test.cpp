// Opening, rewinding and closing tables.
#include "reader/read_context.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

constexpr const char* kDocument = R"({"a":[{"b":1},{"b":2}]})";
constexpr const char* kRows = "1|1|1\n1|2|2\n";
constexpr const char* kAlldata = "1|a||0|\n2|a|b|1|1\n1|a||0|\n2|a|b|1|2\n";
constexpr const char* kNone = "status JMAP_NOTABLE\n";

TEST(ReadInit, FindsATableInAnyCaseAndAlldataByItsExactName) {
    const struct {
        const char* alldataName;
        std::string name;
        const char* rows;
    } cases[] = {{"ALLDATA", "a", kRows},       {"ALLDATA", "A", kRows},
                 {"ALLDATA", "", kNone},        {"ALLDATA", "ALLDATA", kAlldata},
                 {"", "ALLDATA", kNone},        {"", "", kAlldata},
                 {"ALLDATA", "alldata", kNone}, {"ALLDATA", std::string(100, 'a'), kNone}};
    for (const auto& c : cases) {
        const Scan scan(kDocument, {.alldata = c.alldataName});
        const size_t callsBefore = scan.host().calls.size();
        EXPECT_EQ(scan.rows(c.name), c.rows) << c.name;
        EXPECT_EQ(scan.host().calls.size() == callsBefore, c.rows == kNone);  // nothing was made
    }
}

TEST(ReadInit, TakesNullForMapAndParameters) {
    const Scan scan(kDocument);
    EXPECT_QV(JMAP_NOTABLE, OpenTable(scan, nullptr, "a").status);
    std::string name = "a";
    QVEJMAPReadContexth rctx = nullptr;
    for (const QVStrSize len : {-1, 1}) {
        EXPECT_QV(
            len < 0 ? JMAP_NOTABLE : QV_OK,
            scan.engine()->ReadInit(scan.doc(), scan.automap(), name.data(), len, nullptr, &rctx));
    }
    EXPECT_EQ(Scan::rowsOf(scan.engine(), rctx), kRows);
    EXPECT_QV_OK(scan.engine()->ReadTerm(rctx));
    const Scan unfinished("[");  // there is neither map nor ALLDATA
    EXPECT_QV(JMAP_NOTABLE, OpenTable(unfinished, "ALLDATA").status);
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
    EXPECT_EQ(table.rctx->exth, scan.doc()->exth);
    EXPECT_EQ(table.rctx->varCount + table.rctx->obsbufLen, 0);
    EXPECT_QV(JMAP_NOTABLE, OpenTable(scan, &hand.map, name.substr(0, 32)).status);
}

TEST(ReadReset, StartsOverButKeepsTheRow) {
    const Scan scan(kDocument, {.debug = ",READ,-READINIT,READRESET,"});
    {
        OpenTable table(scan, "a", QVEJMAP_RETAIN);
        ASSERT_QV_OK(table.read());
        ASSERT_QV_OK(table.read());
        const std::string row(table.row());
        table.reset();
        EXPECT_EQ(scan.host().notes.back(), "ReadReset ");
        EXPECT_EQ(table.row(), row);
        EXPECT_TRUE(table.rp()->obsbufCleared && table.rp()->tablePathSeen);
        EXPECT_EQ(table.rows(), kRows);
        EXPECT_QV(QV_EOF, table.read());  // the end stays the end
    }
    EXPECT_EQ(scan.host().notes.back(), "ReadTerm called");
    EXPECT_EQ(scan.host().calls.back(), "destroy pool qvejmap read pool");
}

}  // namespace
}  // namespace jmap::test
