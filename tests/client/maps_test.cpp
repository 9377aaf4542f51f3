// Maps that are compared, merged and explained without a command line.
#include "client/error.h"
#include "client/maps/column_explanation.h"
#include "client/maps/map_difference.h"
#include "client/maps/map_merge.h"
#include "client/open/open_document.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace jmap::test {
namespace {

using qvej::OpenDocument;

const std::string kMap = R"({"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[
{"NAME":"n","TYPE":"NUMERIC","PATH":"/root/a"}]}]})";

TEST(Maps, ReadFromTextsAreComparedAndMerged) {
    qvej::Engine engine;
    const qvej::MapModel a = qvej::readMapModel(engine, kMap);
    qvej::MapModel b = a;
    b[0].columns[0].type = qvej::ColumnType::CHARACTER;
    b[0].columns[0].length = 7;
    using Lines = std::vector<std::string>;
    EXPECT_EQ(qvej::mapDifferences(a, a), Lines{});
    const Lines changed = {"~ column t.n: type NUMERIC -> CHARACTER, length none -> 7"};
    EXPECT_EQ(qvej::mapDifferences(a, qvej::readMapModel(engine, qvej::mapDocument(b))), changed);
    EXPECT_EQ(qvej::mapDifferences(a, qvej::mergedMap({a, b}).map), changed);
    try {
        qvej::readMapModel(engine, "{\"DATASETS\":[\n{\"NAME\":1}]}");
        ADD_FAILURE();
    } catch (const qvej::MapError& error) {
        EXPECT_EQ(JMAP_MAP_TABLEKEY, error.status());
        EXPECT_EQ(2, error.line());
    }
}

TEST(Maps, ColumnsOfOpenDocumentsAreExplained) {
    constexpr std::string_view kText = "{\"a\":\"x\",\"c\":{\"d\":1}}";
    const OpenDocument automatic({.memory = kText, .name = "doc"});
    EXPECT_EQ(explainedColumn(automatic.document(), "ROOT.a", "doc").text(),
              "root.a: /root/a\nCHARACTER, since its values are strings\nkind\tvalues\tfirst\n"
              "STRING\t1\tdoc:1:6\nlongest\t1 byte\tdoc:1:6\n");
    const OpenDocument mapped({.memory = kText, .name = "doc", .map = kMap});
    EXPECT_EQ(explainedColumn(mapped.document(), "t.n", "doc").text(),
              "t.n: /root/a\nNUMERIC, as the map says\nkind\tvalues\tfirst\n"
              "STRING\t1\tdoc:1:6\nlongest\t1 byte\tdoc:1:6\n");
    try {
        (void)explainedColumn(mapped.document(), "t.m", "doc");
        ADD_FAILURE();
    } catch (const qvej::Error& error) {
        EXPECT_EQ(JMAP_NOTABLE, error.status());
        EXPECT_STREQ("no column t.m (TABLE.COLUMN); did you mean t.n?", error.what());
    }
}

}  // namespace
}  // namespace jmap::test
