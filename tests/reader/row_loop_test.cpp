// From the record stream to rows.
#include "reader/row_loop.h"

#include "tests/reader/open_table.h"

#include <deque>
#include <utility>

namespace jmap::test {
namespace {

constexpr const char* kOrders =
    R"({"o":[{"i":1,"c":[{"q":1},{"q":2}]},{"i":2,"c":[{"q":3}]},{"i":3}]})";

TEST(RowLoop, GivesTheRowsOfEveryTable) {
    const struct {
        const char* name;
        const char* json;
        const char* table;
        const char* rows;
    } cases[] = {
        {"one row", R"({"a":1,"b":"x","c":true,"d":null,"e":false})", "root", "1|1|x|1|~|0\n"},
        {"parents", kOrders, "o", "1|1|1\n1|2|2\n1|3|3\n"},
        {"children", kOrders, "o_c", "1|1|1|1\n1|1|2|2\n1|2|3|3\n"},
        {"missing values", R"([{"a":1,"b":"x"},{"b":"y"},{"a":3}])", "root",
         "1|1|x\n2|~|y\n3|3|\n"},
        {"scalar array", R"({"t":[1,"x",null]})", "t", "1|1|1|x|~\n"},
        {"empty objects fold", R"({"a":[{"b":1},{},{"b":2}]})", "a", "1|1|1\n1|3|2\n"},
        {"table path of the parent", R"({"a":[{"b":1},{"b":2,"c":{}}]})", "a_c", "1|1|~\n1|2|1\n"},
        {"root never seen", R"({"":1})", "", ""},
        {"empty document", "{}", "root", ""},
        {"no such table", "{}", "x", "status JMAP_NOTABLE\n"},
        {"alldata", R"({"a":{"bb":1},"ccc":"xyz","e":{},"n":null,"s":""})", "ALLDATA",
         "1|a||0|\n2|a|bb|1|1\n1|ccc||1|xyz\n1|e||0|\n1|n||1|null\n1|s||1|\n"},
        // Behind an empty name every record counts a label too many, and the lengths are shifted.
        {"alldata, empty name", R"([{"":1},{"b":"v"}])", "ALLDATA", "1|||1|1\n1|||0|\n2|||1|v\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(Scan(c.json).rows(c.table), c.rows);
    }
}

TEST(RowLoop, ALabelOf256BytesIsReadByItsShortLength) {
    const std::string label(300, 'n');
    const Scan scan("{\"" + label + "\":{\"b\":1}}");
    OpenTable table(scan, "ALLDATA");
    ASSERT_QV_OK(table.read());
    ASSERT_QV_OK(table.read());
    EXPECT_EQ(table.cell(1), std::string(44, 'n') + std::string(256, ' '));
    EXPECT_EQ(table.cell(2), "n");
}

TEST(RowLoop, RetainedColumnsKeepTheirValueAlsoOverAReset) {
    const Scan scan(R"([{"b":"x"},{"a":1,"b":"y"},{"c":"2001"},{"b":"z"}])");
    HandMap hand;
    hand.table("t", "/root");
    hand.column("a", VAR_DOUBLE, "/root/a").retain = true;
    hand.column("b", VAR_CHAR, "/root/b", 2).noretain = true;
    hand.column("a2", VAR_DOUBLE, "/root/a");
    hand.column("o", VAR_ORDINAL, "/root").noretain = true;
    HandMap::informat(hand.column("c", VAR_CHAR, "/root/c", 4));
    const char* expected[][2] = {
        {"~|x|~|1|\n1|y|1|2|\n1||~|3|\n1|z|~|4|\n", "1|x|~|1|\n1|y|1|2|\n1||~|3|\n1|z|~|4|\n"},
        {"~|x|~|1|\n1|y|1|2|\n1||1|3|\n1|z|1|4|\n", "1|x|1|1|\n1|y|1|2|\n1||1|3|\n1|z|1|4|\n"}};
    for (const uint64_t flags : {uint64_t{0}, uint64_t{QVEJMAP_RETAIN}}) {
        OpenTable table(scan, &hand.map, "t", flags);
        for (const char* rows : expected[flags]) {
            EXPECT_EQ(table.rows(), rows);
            table.reset();
        }
        const VARIABLEINFO& raw = table.rctx->varinfo[4];
        for (const char* text : {"", "", "2001", ""}) {  // each row clears it, unless retained
            ASSERT_QV_OK(table.read());
            EXPECT_EQ(view(raw.rawdata, raw.rawdataLen), flags != 0 ? "2001" : text);
        }
    }
}

// Objects that fill several blocks.
std::string manyObjects(int count) {
    std::string json = "{\"o\":[";
    for (int i = 0; i < count; ++i) {
        json += (i == 0 ? "" : ",") + std::string("{\"id\":") + std::to_string(i) + ",\"text\":\"" +
                std::string(static_cast<size_t>(i % 97), 'x') + "\",\"t\":[" +
                std::to_string(i % 7) + ",true]}";
    }
    return json + "]}";
}

constexpr const char* kTables[] = {"o", "o_t", "ALLDATA", "o"};

TEST(RowLoop, RowsAreTheSameHoweverBlocksAreKept) {
    const std::string json = manyObjects(9000);
    std::vector<std::string> expected;
    for (int kept = 0; kept < 4; ++kept) {
        SCOPED_TRACE(kept);
        FakeHost host;
        host.setAvailable(1);
        ScanOptions options;
        options.compress = (kept & 1) != 0;
        options.memLeave = (kept & 2) != 0 ? 2 : 0;  // too much to leave: blocks are spilled
        options.cacheFile = scratchFile("blocks");
        const Scan scan(host, json, options);
        ASSERT_QV_OK(scan.status);
        EXPECT_EQ(scan.caching, options.memLeave != 0);
        ASSERT_NE(scan.p()->chead->next->next, nullptr);
        for (size_t i = 0; i < std::size(kTables); ++i) {
            OpenTable table(scan, kTables[i]);
            const std::string rows = table.bytes();
            for (int again = 0; again < 3; ++again) {
                EXPECT_QV(QV_EOF, table.read());  // the end stays the end
            }
            table.reset();
            ASSERT_QV_OK(table.read());
            table.reset();
            EXPECT_TRUE(table.bytes() == rows) << kTables[i];
            if (kept == 0) {
                EXPECT_GE(rows.size(), static_cast<size_t>(9000 * table.rctx->obsbufLen));
                expected.push_back(rows);
            }
            EXPECT_TRUE(rows == expected[i]) << kTables[i];
        }
    }
}

TEST(RowLoop, OpenTablesDoNotDisturbEachOther) {
    const Scan scan(manyObjects(9000));
    std::deque<OpenTable> tables;
    for (const char* name : kTables) {
        tables.emplace_back(scan, name);
    }
    std::vector<std::string> rows(tables.size());
    for (bool more = true; more;) {
        more = false;
        for (size_t i = 0; i < tables.size(); ++i) {
            if (tables[i].read() == QV_OK) {
                rows[i] += tables[i].row();
                more = true;
            }
        }
    }
    for (size_t i = 0; i < tables.size(); ++i) {
        EXPECT_TRUE(OpenTable(scan, kTables[i]).bytes() == rows[i]) << kTables[i];
    }
}

TEST(RowLoop, ADocumentWithoutRecordsHasNoRows) {
    const Scan scan(R"({"a":1})");
    COMPPATHS* const blocks = std::exchange(scan.p()->chead, nullptr);
    OpenTable table(scan, "root");
    EXPECT_QV(QV_EOF, table.read());
    scan.p()->chead = blocks;
    EXPECT_QV(QV_EOF, table.read());
    table.reset();
    EXPECT_EQ(table.rows(), "1|1\n");
}

TEST(RowLoop, ABlockThatDoesNotLoadIsReportedAndPassed) {
    ScanOptions options;
    options.compress = true;
    const Scan scan(manyObjects(9000), options);
    COMPPATHS* const first = scan.p()->chead;
    OpenTable table(scan, "ALLDATA");
    const std::string whole = table.bytes();
    for (COMPPATHS* bad : {first, first->next}) {
        const std::string kept(bad->buf, static_cast<size_t>(bad->bufLen));
        std::memset(bad->buf, 0xFF, kept.size());
        table.reset();
        const std::string before = table.bytes(QV_NOMEM);
        EXPECT_EQ(before.empty(), bad == first);
        EXPECT_EQ(table.rp()->curr, bad);
        const std::string behind = table.bytes();
        EXPECT_FALSE(behind.empty());
        EXPECT_LT(before.size() + behind.size(), whole.size());
        EXPECT_TRUE(whole.starts_with(before) && whole.ends_with(behind));
        kept.copy(bad->buf, kept.size());
    }
    table.reset();
    EXPECT_TRUE(table.bytes() == whole);
    // Of a block that gives fewer bytes than it should, only those are replayed.
    COMPPATHS* const second = first->next;
    const COMPPATHS* const last = scan.p()->ctail;
    ASSERT_LT(last->uncompressedLen, second->uncompressedLen);
    second->buf = last->buf;
    second->bufLen = last->bufLen;
    table.reset();
    const std::string rows = table.bytes();
    second->uncompressedLen = last->uncompressedLen;
    table.reset();
    EXPECT_TRUE(table.bytes() == rows);
}

TEST(RowLoop, TheLastRecordsLabelsStandInTheDocument) {
    const Scan scan(R"({"aa":[{"b":1},{"b":2}]})");
    OpenTable table(scan, "aa");
    for (const int32_t labels : {1, 2}) {  // ended by the second /root/aa, then behind /root/aa/b
        ASSERT_QV_OK(table.read());
        EXPECT_EQ(scan.p()->labelCount, labels);
        EXPECT_EQ(scan.p()->labelCurLens[labels - 1], 3 - labels);
    }
}

TEST(RowLoop, SaysWhatItReads) {
    ScanOptions options;
    options.debug = ",READ,-READINIT,";
    const Scan scan(R"({"a":[{"b":1,"c":{}}]})", options);
    OpenTable table(scan, "a");
    EXPECT_EQ(table.rows(), "1|1|1\n");
    const Names expected = {
        "",
        "Read on dataset[a] called",
        "consumePath    [a] [/root]",
        "consumePathOnly[a] path[/root] name[ordinal_root] set to 1",
        "consumePath    [a] [/root/a]",
        "consumePathOnly[a] tablePath [/root/a] seen ONCE",
        "consumePathOnly[a] path[/root/a] name[ordinal_a] set to 1",
        "consumePath    [a] [/root/a/b] val [1]",
        "consumePathVar [a] [b] set to [1]",
        "consumePath    [a] [/root/a/c]",
        "consumePathOnly[a] path [/root/a/c] contains tablePath [/root/a] so NOT DONE",
        "consumePath    [a] [/root/a/c/FAKE] val [VAR]",
        "Read           [a] returning LAST OBSERVATION",
        "",
        "Read on dataset[a] called",
        "Read           [a] atEOF set, returning QV_EOF"};
    EXPECT_EQ(scan.host().notes, expected);
    table.reset();
    COMPPATHS* const blocks = std::exchange(scan.p()->chead, nullptr);
    EXPECT_QV(QV_EOF, table.read());
    EXPECT_EQ(scan.host().notes.back(), "Read           [a] returning QV_EOF");
    scan.p()->chead = blocks;
}

TEST(RowLoop, ShowsRecordsWithTheirLabels) {
    ScanOptions options;
    options.debug = ",ALLDATA,";
    const Scan scan(R"({"ab":{"c":"xyz"}})", options);
    scan.host().notes.clear();
    EXPECT_EQ(scan.rows("ALLDATA"), "1|ab||0|\n2|ab|c|1|xyz\n");
    const std::vector<std::string> expected = {"Read: path [/root]",
                                               "Read: p->labelCount 0 valLen 0",
                                               "Read: path [/root/ab]",
                                               "Read: p->labelCount 1 valLen 0",
                                               "  p1 2 [ab]",
                                               "Read: path [/root/ab/c xyz]",
                                               "Read: p->labelCount 2 valLen 3",
                                               "  p1 2 [ab]",
                                               "  p2 1 [c]",
                                               "  valLen 3 [xyz]"};
    EXPECT_EQ(scan.host().notes, expected);
}

}  // namespace
}  // namespace jmap::test
