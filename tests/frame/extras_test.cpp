// What tools need beyond the operation table.
#include "qvejmapx.h"

#include "core/text.h"
#include "testkit/testkit.h"

namespace jmap::test {
namespace {

std::string text(const char* at, QVStrSize len) {
    return slashes(view(at, len));
}

std::string rowsOf(const Scan& scan, JMAPTableh table) {
    QVEJMAPReadContexth rctx = nullptr;
    EXPECT_QV_OK(jmapReadTable(scan.doc(), table, nullptr, &rctx));
    const std::string rows = Scan::rowsOf(scan.engine(), rctx);
    EXPECT_QV_OK(scan.engine()->ReadTerm(rctx));
    return rows;
}

TEST(Extras, ListTablesColumnsAndRowsByPosition) {
    // The second table is called as ALLDATA is.
    const Scan scan(R"({"a":[{"v":1},{"v":"text"}],"ALLDATA":{"w":4}})");
    JMAPTableh table = nullptr;
    std::string lines;
    while (jmapNextTable(scan.automap(), &table) == QV_OK) {
        JMAPTableInfo info{};
        jmapTableInfo(table, &info);
        lines += text(info.name, info.nameLen) + " " + text(info.tablePath, info.tablePathLen) +
                 " " + std::to_string(info.columnCount);
        JMAPColumnh column = nullptr;
        while (jmapNextColumn(table, &column) == QV_OK) {
            JMAPColumnInfo col{};
            jmapColumnInfo(column, &col);
            lines += " " + text(col.name, col.nameLen) + "," + text(col.path, col.pathLen) + "," +
                     std::to_string(col.type) + "," + std::to_string(col.length);
        }
        lines += "\n" + rowsOf(scan, table);
    }
    EXPECT_EQ(lines,
              "a /root/a 3 ordinal_root,/root,0,0 ordinal_a,/root/a,0,0 v,/root/a/v,2,4\n"
              "1|1|1\n1|2|text\n"
              "ALLDATA /root/ALLDATA 3 ordinal_root,/root,0,0 ordinal_ALLDATA,/root/ALLDATA,0,0 "
              "w,/root/ALLDATA/w,1,1\n1|1|4\n");
    const JMAPTableh last = table;
    EXPECT_TRUE(jmapNextTable(scan.automap(), &table) == QV_EOF && table == last);
    EXPECT_QV(QV_EOF, jmapNextTable(nullptr, &table));
    ASSERT_QV_OK(jmapAlldataTable(scan.doc(), &table));
    EXPECT_EQ(rowsOf(scan, table).substr(0, 16), "1|a||0|\n2|a|v|1|");
    const Scan unfinished("[");
    EXPECT_QV(JMAP_NOTABLE, jmapAlldataTable(unfinished.doc(), &table));
}

TEST(Extras, CursorsCrossBlocksAndDoNotDisturbEachOther) {
    std::string json = "[0";
    for (int i = 0; i < 60000; ++i) {
        json += ",\"" + std::to_string(i) + "\"";
    }
    FakeHost host;
    host.setAvailable(0);
    const Scan scan(host, json + "]",
                    {.compress = true, .cacheFile = scratchFile("cache"), .memLeave = 1});
    const std::string all = scan.recordBytes();
    const std::vector<std::string> before = host.leftovers();
    JMAPTotals totals{};
    jmapTotals(scan.doc(), &totals);
    EXPECT_TRUE(totals.records == 60001 && totals.blocks > 1 &&
                totals.blocksOnDisk == totals.blocks);
    EXPECT_TRUE(totals.recordBytes == all.size() && totals.storedBytes < all.size());

    JMAPRecordCursorh cursors[2] = {};
    for (uint64_t n = 1; n <= 3; ++n) {  // pool, cursor, block
        host.failAllocation(n);
        EXPECT_TRUE(jmapRecordsOpen(scan.doc(), cursors) == QV_NOMEM && cursors[0] == nullptr);
        EXPECT_EQ(host.leftovers(), before);
    }
    JMAPRecord record{};
    std::string bytes[2];
    ASSERT_QV_OK(jmapRecordsOpen(scan.doc(), &cursors[0]));
    ASSERT_QV_OK(jmapRecordsOpen(scan.doc(), &cursors[1]));
    for (uint64_t i = 0; i < 2 * totals.records; ++i) {
        ASSERT_QV_OK(jmapRecordsNext(cursors[i % 2], &record));
        bytes[i % 2] += view(record.bytes, record.bytesLen);
    }
    EXPECT_TRUE(bytes[0] == all && bytes[1] == all);
    for (const JMAPRecordCursorh cursor : cursors) {
        EXPECT_QV(QV_EOF, jmapRecordsNext(cursor, &record));
        EXPECT_QV_OK(jmapRecordsClose(cursor));
    }
    EXPECT_EQ(host.leftovers(), before);
    EXPECT_EQ(std::string(jmapKindName(0)) + jmapKindName(7), "UNKNOWN?UNKNOWN?");
}

TEST(Extras, StatisticsComeInGroupsOfOneParent) {
    // "a/x" heads its group before "b"; "a/y" comes later and still belongs to the group of "a/x".
    const Scan scan(R"([{"a":{"x":1},"b":true},{"a":{"x":"long","y":2}},{"c":{}}])");
    JMAPPathh path = nullptr;
    std::string lines;
    while (jmapNextPath(scan.doc(), &path) == QV_OK) {
        JMAPPathInfo info{};
        jmapPathInfo(path, &info);
        lines += text(info.path, info.pathLen) + " " + std::to_string(info.count) + " " +
                 std::to_string(info.type) + " " + std::to_string(info.maxValueLen) + "\n";
    }
    EXPECT_EQ(lines, "/root/a/x 2 2 4\n/root/a/y 1 1 1\n/root/b 1 1 4\n/root/c/FAKE 1 3 3\n");
    JMAPTotals totals{};
    jmapTotals(scan.doc(), &totals);
    EXPECT_TRUE(totals.blocks == 1 && totals.blocksOnDisk == 0);
}

}  // namespace
}  // namespace jmap::test
