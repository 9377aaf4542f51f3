// Maps in the journal.
#include "automap/map_dump.h"

#include "testkit/hand_map.h"

namespace jmap::test {
namespace {

TEST(MapDump, ShowsEveryKindOfColumnInAShortAndALongForm) {
    HandDocument doc;
    HandMap hand;
    hand.table("T", "/root/t");
    hand.column("o", VAR_ORDINAL, "/root/t", 0);
    hand.column("d", VAR_DOUBLE, "/root/t/d").retain = true;
    VARINFO& c = hand.column("c", VAR_CHAR, "/root/t/c", 12);
    std::string label = "A label";
    c.label = label.data();
    c.labelLen = lengthOf(label);
    HandMap::informat(c);
    hand.column("f", VAR_FAKEVARIABLE, nullptr);
    hand.table("one");
    hand.column("x", VAR_DOUBLE, "x");
    doc.p.automap = &hand.map;
    EXPECT_QV_OK(dumpMap(&doc.p));
    EXPECT_QV_OK(dumpMap2(&doc.p, &hand.map, "USER"));
    std::string journal;
    for (const std::string& note : doc.host.notes) {
        journal += "\n" + note;
    }
    EXPECT_EQ(journal, R"(
MAP DUMP
  dataset [T]
    ordinal   var [o] path [/root/t]
    numeric   var [d] path [/root/t/d]
    character var [c] path [/root/t/c]  maxlen 12
    UNKNOWN?  var [f] path []
  dataset [one]
    numeric   var [x] path [x]
MAP DUMP END
USER MAP DUMP
 dataset     [T] 4 variables
  ordinal    [o]
    path     [/root/t]
  numeric    [d]
    path     [/root/t/d]
    RETAIN
  character  [c]
    maxlen   12
    path     [/root/t/c]
    label    [A label]
    format   [FMT 10 2]
    informat [INF 4 1]
  ordinal    [f]
    path     []

 tablePath   [/root/t]

 dataset     [one] 1 variable
  numeric    [x]
    path     [x]

 tablePath   []

USER MAP DUMP END)");
}

}  // namespace
}  // namespace jmap::test
