// What tools need beyond the operation table.
#include "qvejmapx.h"

#include "core/text.h"
#include "testkit/testkit.h"

namespace jmap::test {
namespace {

TEST(Extras, ATableIsReadByItsHandleWhateverItIsCalled) {
    const Scan scan(R"({"a":1,"ALLDATA":{"w":4}})");
    const auto rows = [&](JMAPTableh table) {
        QVEJMAPReadContexth rctx = nullptr;
        EXPECT_QV_OK(jmapReadTable(scan.doc(), table, nullptr, &rctx));
        const std::string read = Scan::rowsOf(scan.engine(), rctx);
        EXPECT_QV_OK(scan.engine()->ReadTerm(rctx));
        return read;
    };
    JMAPTableh table = nullptr;
    EXPECT_QV(QV_EOF, jmapNextTable(nullptr, &table));
    EXPECT_QV(JMAP_NOTABLE, jmapAlldataTable(Scan("[").doc(), &table));
    ASSERT_QV_OK(jmapAlldataTable(scan.doc(), &table));
    EXPECT_EQ(rows(table), "1|a||1|1\n1|ALLDATA||0|\n2|ALLDATA|w|1|4\n");
    table = nullptr;
    ASSERT_QV_OK(jmapNextTable(scan.automap(), &table));
    ASSERT_QV_OK(jmapNextTable(scan.automap(), &table));
    EXPECT_EQ(rows(table), "1|1|4\n");
}

TEST(Extras, StatisticsComeInGroupsOfOneParent) {
    // "a/x" heads its group before "b"; "a/y" comes later and still belongs to the group of "a/x".
    const Scan scan(R"([{"a":{"x":1},"b":true},{"a":{"x":"long","y":2}},{"c":{}}])");
    JMAPPathh path = nullptr;
    std::string lines;
    while (jmapNextPath(scan.doc(), &path) == QV_OK) {
        JMAPPathInfo info{};
        jmapPathInfo(path, &info);
        lines += slashes(view(info.path, info.pathLen)) + " " + std::to_string(info.count) + " " +
                 std::to_string(info.type) + " " + std::to_string(info.maxValueLen) + "\n";
    }
    EXPECT_EQ(lines, "/root/a/x 2 2 4\n/root/a/y 1 1 1\n/root/b 1 1 4\n/root/c/FAKE 1 3 3\n");
    EXPECT_EQ(std::string(jmapKindName(0)) + jmapKindName(7), "UNKNOWN?UNKNOWN?");
}

}  // namespace
}  // namespace jmap::test
