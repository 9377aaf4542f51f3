// The layout of the ALLDATA table.
#include "automap/alldata.h"

#include "tests/automap/hand_document.h"

namespace jmap::test {
namespace {

TEST(Alldata, IsLaidOutByTheLongestLabelsAndValueOrInPart) {
    const char* cases[][3] = {
        {R"({"a":{"bb":1},"ccc":"wxyz"})", "all of it",
         "all of it - (P:D0, P1:C3, P2:C2, V:D4, Value:C4)\n"},
        {R"({"a":1})", "", "ALLDATA - (P:D0, P1:C1, V:D1, Value:C1)\n"},
        {"{}", "ALLDATA", "ALLDATA - (P:D0, P1:C0, V:D3, Value:C3)\n"},
    };
    for (const auto& [json, name, expected] : cases) {
        ScanOptions options;
        options.alldata = name;
        EXPECT_EQ(Scan(json, options).alldata(), expected) << json;
    }
    HandDocument doc;
    int32_t labelMaxes[] = {1, 2};
    doc.p.labelMaxes = labelMaxes;
    doc.p.labelCountMax = 1;
    doc.host.failAllocation(1 + 2 + 2 + 1);  // table, P, P1, then P2
    EXPECT_QV(QV_NOMEM, doAlldataDsinfo(&doc.p, nullptr));
    ASSERT_NE(doc.p.alldataDs, nullptr);
    EXPECT_EQ(doc.p.alldataDs->varcount, 2u);
}

}  // namespace
}  // namespace jmap::test
