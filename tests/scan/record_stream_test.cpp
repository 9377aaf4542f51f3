// The record stream: bytes, label counts, block boundaries.
#include "scan/record_stream.h"

#include "scan/record_format.h"
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

TEST(RecordStream, HasTheseBytes) {
    using namespace std::string_view_literals;
    const Scan scan(R"({"x":{"y":12}})");
    std::string expected("\0\0\0\0\x05\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x01\x02root"sv);
    expected += "\x01\0\0\0\x01\x07\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x01\x02root\x02x"sv;
    expected += "\x02\0\0\0\x01\x01\x0C\0\0\0\0\0\0\0\x02\0\0\0\0\0\0\0\x02\x02root\x02x\x02y 12"sv;
    EXPECT_EQ(expected, scan.blocks()[0]);
    EXPECT_EQ(3u, scan.p()->pathCount);
    EXPECT_EQ(2, scan.p()->valueMaxLen);
}

// The label count and the length bytes of each record: "2[1,3] ".
std::string labelCounts(std::string_view bytes) {
    std::string out;
    while (!bytes.empty()) {
        const RECORD record = parseRecord(bytes.data());
        bytes.remove_prefix(static_cast<std::size_t>(record.size));
        out += std::to_string(record.labelCount) + "[";
        for (int32_t i = 0; i < record.labelCount; ++i) {
            out += (i == 0 ? "" : ",") + std::to_string(record.labelLens[i]);
        }
        out += "] ";
    }
    return out;
}

TEST(RecordStream, CountsLabelsSo) {
    const struct {
        const char* name;
        std::string json;
        const char* counts;
    } kCases[] = {
        {"a long label modulo 256", "{\"" + std::string(300, 'n') + "\":1}", "0[] 1[44] "},
        {"a placeholder at a new depth", R"({"a":[]})", "0[] 1[1] 2[1,0] "},
        {"a placeholder has the length of the last label there", R"({"a":{"bcd":1},"ef":[]})",
         "0[] 1[1] 2[1,3] 1[2] 2[2,3] "},
        {"an empty name raises all later counts", R"([{"":1,"ab":2},{"c":{}}])",
         "0[] 1[0] 2[0,2] 1[0] 2[0,1] 3[0,1,0] "},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(c.counts, labelCounts(Scan(c.json).blocks()[0])) << c.name;
    }
    for (const std::size_t depth : {30, 31, 60}) {  // below the deepest: the spare length
        std::string json = "{}";
        std::string last = std::to_string(depth + 1) + "[";
        for (std::size_t i = 0; i < depth; ++i) {
            json = R"({"a":)" + json + "}";
            last += "1,";
        }
        EXPECT_TRUE(labelCounts(Scan(json).blocks()[0]).ends_with(" " + last + "0] ")) << depth;
    }
}

TEST(RecordStream, ARecordThatLeavesFourBytesBeginsANewBlock) {
    for (const QVStrSize left : {5, 4, 0, -1}) {
        SCOPED_TRACE(left);
        HandDocument doc;
        JMAP_PRIVATE* p = &doc.p;
        for (const QVStrSize size : {QVStrSize{1000}, kBlockBytes - 1000 - left}) {
            const std::string text(static_cast<std::size_t>(size - kRecordFixedBytes), 'x');
            ASSERT_QV_OK(processPathVariableString(p, nullptr, text, 0, VAL_NOVAL));
        }
        EXPECT_EQ(left > 4, p->chead == nullptr);
        EXPECT_EQ(kBlockBytes - left - (left > 4 ? 0 : 1000), p->cBufi);
        EXPECT_TRUE(left > 4 || p->chead->uncompressedLen == 1000);
    }
}

TEST(RecordStream, RefusesARecordThatNoBlockHolds) {
    // {"a":[1,<number>]}: the text is "/root/a/a2 <number>", two labels.
    constexpr QVStrSize kOther = 11 + 1 + kRecordRoomBytes;  // text but digits, label count, room
    for (const QVStrSize over : {-1, 0, 5000000}) {
        SCOPED_TRACE(over);
        const std::string number(static_cast<std::size_t>(kBlockBytes - kOther + over), '7');
        const Scan scan(R"({"a":[1,)" + number + "]}");
        EXPECT_QV(over < 0 ? QV_OK : JMAP_PARSE, scan.status);
        EXPECT_QV(over < 0 ? QV_OK : QV_NOMEM, scan.doc()->e.rc);
        const JMAP_PRIVATE* p = scan.p();  // a refused record does not close the block
        EXPECT_EQ(over < 0 ? "" : "0[] 1[1] 2[1,2] ", labelCounts(view(p->cBuf, p->cBufi)));
        EXPECT_TRUE(over >= 0 || scan.blocks().back().ends_with(" " + number));
    }
}

}  // namespace
}  // namespace jmap::test
