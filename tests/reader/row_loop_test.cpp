// From the record stream to rows.
#include "reader/row_loop.h"

#include "tests/reader/open_table.h"

namespace jmap::test {
namespace {

TEST(RowLoop, RetainedColumnsKeepTheirValueAlsoOverAReset) {
    const Scan scan(R"([{"b":"x"},{"a":1,"b":"y"},{"c":"2001"},{"b":"z"}])");
    HandMap hand;
    hand.table("t", "/root");
    hand.column("a", VAR_DOUBLE, "/root/a").retain = true;
    VARINFO& both = hand.column("b", VAR_CHAR, "/root/b", 2);
    both.retain = both.noretain = true;  // the second wins
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

TEST(RowLoop, ABlockThatDoesNotLoadIsReportedAndPassed) {
    std::string json = "[0";  // two full blocks and a shorter one
    for (int i = 0; i < 75; ++i) {
        json += ",\"" + std::to_string(i) + std::string(30000, 'x') + "\"";
    }
    const Scan scan(json + "]", {.compress = true});
    COMPPATHS* const first = scan.p()->chead;
    COMPPATHS* const second = first->next;
    const COMPPATHS* const last = scan.p()->ctail;
    ASSERT_EQ(second->next, last);
    OpenTable table(scan, "ALLDATA");
    const std::string whole = table.rows();
    std::string garbage(static_cast<size_t>(std::max(first->bufLen, second->bufLen)), '\xFF');
    for (COMPPATHS* bad : {first, second}) {
        char* const kept = std::exchange(bad->buf, garbage.data());
        table.reset();
        std::string before = table.rows();
        EXPECT_TRUE(before.ends_with("status QV_NOMEM\n") && table.rp()->blocks.curr == bad);
        before.resize(before.size() - std::strlen("status QV_NOMEM\n"));
        const std::string after = table.rows();
        EXPECT_EQ(before.empty(), bad == first);
        EXPECT_TRUE(!after.empty() && before.size() + after.size() < whole.size());
        EXPECT_TRUE(whole.starts_with(before) && whole.ends_with(after));
        bad->buf = kept;
    }
    // Of a block that gives fewer bytes than it should, only those are replayed.
    second->buf = last->buf;
    second->bufLen = last->bufLen;
    table.reset();
    const std::string rows = table.rows();
    second->uncompressedLen = last->uncompressedLen;
    table.reset();
    EXPECT_TRUE(table.rows() == rows);
}

}  // namespace
}  // namespace jmap::test
