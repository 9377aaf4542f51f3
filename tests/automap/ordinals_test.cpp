// The ordinal columns of a table.
#include "automap/ordinals.h"

#include "tests/automap/hand_document.h"

namespace jmap::test {
namespace {

TEST(Ordinals, NumberTheObjectAndAllAroundIt) {
    const std::string level = "/" + std::string(40, 'n');
    const std::string cut = "ordinal_" + std::string(24, 'n');
    std::string deep;
    std::string ofDeep;
    for (const char* suffix : {"", "1", "2", "3", "4", "5", "6", "7", "8", "9", ":"}) {
        deep += "/a";
        ofDeep += std::string("ordinal_a") + suffix + "=" + deep + " ";
    }
    const struct {
        std::string path, expected;  // "name=/path" for each ordinal
        uint64_t count = UINT64_MAX;
    } cases[] = {
        {"/root/a/x", "ordinal_root=/root ordinal_a=/root/a "},
        {"/root/a/x", "ordinal_a=/root/a ", 1},
        {"/root/a/x", "", 0},
        {"/root", ""},
        {"x", ""},
        {"a/x", "ordinal_a=a "},
        {"/root/a-b/x", "ordinal_a_b=/root/a-b ", 1},
        {"/root//x", "ordinal_root=/root "},
        {"/root//x", "", 1},  // the nameless level is counted
        // Equal names get one more character, counted over the table; behind 9 comes ":".
        {"/a/b/a/x", "ordinal_a=/a ordinal_b=/a/b ordinal_a1=/a/b/a "},
        {"/a/A/x", "ordinal_a=/a ordinal_A=/a/A "},
        {"/a/a1/a/x", "ordinal_a=/a ordinal_a1=/a/a1 ordinal_a12=/a/a1/a "},
        {level + level + "/x", cut + "=" + level + " " + cut + "1=" + level + level + " "},
        {deep + "/x", ofDeep},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.path);
        HandDocument doc;
        doc.p.ordinalCount = c.count;
        DSINFO ds{};
        EXPECT_QV_OK(doOrdinals(&doc.p, &ds, doc.addPath(c.path)));
        std::string text;
        uint64_t columns = 0;
        for (const VARINFO& column : each(ds.vhead)) {
            EXPECT_EQ(column.type, VAR_ORDINAL);
            columns += 1;
            text += std::string(view(column.name, column.nameLen)) + "=" +
                    slashes(view(column.path, column.pathLen)) + " ";
        }
        EXPECT_EQ(text, c.expected);
        EXPECT_EQ(ds.varcount, columns);
    }
}

}  // namespace
}  // namespace jmap::test
