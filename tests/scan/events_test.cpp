// From the parser's events to records.
#include "scan/events.h"

#include "scan/nesting.h"
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

TEST(Events, GiveTheseRecords) {
    const std::string k29(29, 'b');
    const std::string k30(30, 'c');
    const std::string k3000(3000, 'v');
    const std::string k32767(32767, 's');
    const std::string k40000(40000, '1');
    const struct {
        const char* name;
        std::string json;
        std::string records;
    } kCases[] = {
        {"members of every kind", R"({"a":1,"b":"","c":true,"d":false,"e":null,"f":{},"g":[]})",
         "NOVAL /root\nNUMBER /root/a=1\nSTRING /root/b=\nBOOLEAN /root/c=true\n"
         "BOOLEAN /root/d=false\nNULL /root/e=null\nNOVAL /root/f\nFAKE_VARIABLE /root/f/FAKE=VAR\n"
         "NOVAL /root/g\nFAKE_VARIABLE /root/g/FAKE=VAR\n"},
        {"elements of every kind", R"({"a":[1,true,false,null,"s",""]})",
         "NOVAL /root\nNOVAL /root/a\nNUMBER /root/a/a1=1\nBOOLEAN /root/a/a2=true\n"
         "BOOLEAN /root/a/a3=false\nNULL /root/a/a4=null\nSTRING /root/a/a5=s\nSTRING "
         "/root/a/a6=\n"},
        {"empty string as the first token", R"([""])", "STRING /root/element1=\n"},
        {"empty object", "{}", "NOVAL /root\nFAKE_VARIABLE /root/FAKE=VAR\n"},
        {"empty array", "[]", "NOVAL /root\nFAKE_VARIABLE /root/FAKE=VAR\n"},
        {"a nested array resets its parent and repeats the marker", R"({"t":[1,[2,3],4,5]})",
         "NOVAL /root\nNOVAL /root/t\nNUMBER /root/t/t1=1\nNUMBER /root/t/element2=2\n"
         "NUMBER /root/t/element3=3\nNOVAL /root/t\nNUMBER /root/t/t1=4\nNUMBER /root/t/t2=5\n"},
        {"empty array in an array", "[[],[[]]]",
         "NOVAL /root\nNOVAL /root\nFAKE_VARIABLE /root/FAKE=VAR\nNOVAL /root\nNOVAL /root\n"
         "NOVAL /root\nFAKE_VARIABLE /root/FAKE=VAR\n"},
        {"objects do not advance the number", R"([1,{"x":[7]},2,{},3])",
         "NUMBER /root/element1=1\nNOVAL /root\nNUMBER /root/x/x2=7\nNUMBER /root/element1=2\n"
         "NOVAL /root\nFAKE_VARIABLE /root/FAKE=VAR\nNUMBER /root/element2=3\n"},
        {"empty name, also of a long value", R"({"":")" + k3000 + R"(","":[2]})",
         "NOVAL /root\nSTRING /root=" + k3000 + "\nNOVAL /root/\nNUMBER /root//1=2\n"},
        {"strings are cut, names and numbers are not",
         R"([")" + k32767 + R"(s",{")" + k40000 + R"(":")" + k32767 + R"(s"},)" + k40000 + "]",
         "STRING /root/element1=" + k32767 + "\nNOVAL /root\nSTRING /root/" + k40000 + "=" +
             k32767 + "\nNUMBER /root/element2=" + k40000 + "\n"},
        {"the buffer of element names grows by the base name alone, digits are cut",
         R"({"":[0],")" + k29 + R"(":[1],")" + k30 + R"(":[1]})",
         "NOVAL /root\nNOVAL /root/\nNUMBER /root//1=0\nNOVAL /root/" + k29 + "\nNUMBER /root/" +
             k29 + "/" + k29 + "=1\nNOVAL /root/" + k30 + "\nNUMBER /root/" + k30 + "/" + k30 +
             "1=1\n"},
    };
    FakeHost host;
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Scan scan(host, c.json);
        EXPECT_QV_OK(scan.status);
        EXPECT_EQ(c.records, scan.records());
        EXPECT_EQ(nullptr, scan.p()->lhead) << "the stack is empty at the end";
    }
}

TEST(Events, RefuseAScalarDocumentAndAnEndThatDoesNotFit) {
    for (const char* json : {"5", "\"x\"", "true", "null"}) {
        const Scan scan(json);
        EXPECT_QV(JMAP_INCOMPLETE, scan.status) << json;
        EXPECT_EQ(JMAP_INCOMPLETE, scan.doc()->e.rc) << json;
    }
    HandDocument doc;
    JSNParseCB* cb = &doc.p.parseCB;
    EXPECT_QV(JMAP_PARSE, cb->objectEnd(cb)) << "nothing is open";
    ASSERT_QV_OK(cb->arrayStart(cb));
    EXPECT_QV(JMAP_PARSE, cb->objectEnd(cb));
    ASSERT_QV_OK(cb->objectStart(cb));
    EXPECT_QV(JMAP_PARSE, cb->arrayEnd(cb));
    EXPECT_EQ(WHAT_OBJECT, peekLevel(&doc.p)->what) << "the stack is as it was";
}

}  // namespace
}  // namespace jmap::test
