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

}  // namespace
}  // namespace jmap::test
