// The map document.
#include "mapdoc/map_writer.h"

#include "tests/automap/hand_map.h"

namespace jmap::test {
namespace {

TEST(MapWriter, WritesTheMapAsCompactJson) {
    EXPECT_EQ(Scan(R"({"a/\"\\\u0001\té":1,"c":"xyz"})").mapDocument(),
              R"({"DATASETS":[{"DSNAME":"root","TABLEPATH":"/root","VARIABLES":[)"
              R"({"NAME":"ordinal_root","TYPE":"ORDINAL","PATH":"/root"},)"
              R"({"NAME":"a_______","TYPE":"NUMERIC","PATH":"/root/a/\"\\\u0001\té"},)"
              R"({"NAME":"c","TYPE":"CHARACTER","PATH":"/root/c","CURRENT_LENGTH":3}]}]})");
}

// A writer that writes down what it is asked for and fails at one call.
struct RecordingWriter {
    JSNWriter writer{};  // must be first
    std::string asked;
    int failAt = 0;  // call, from 1; 0: none
    int calls = 0;

    static QVStatus note(JSNWriterh w, const std::string& what) {
        auto* self = reinterpret_cast<RecordingWriter*>(w);
        self->asked += what + " ";
        return ++self->calls == self->failAt ? QV_INTERNAL : QV_OK;
    }
    RecordingWriter() {
        writer.open = [](JSNWriterh w, int32_t kind) {
            return note(w, kind == JSN_OPEN_OBJECT ? "{" : "[");
        };
        writer.close = [](JSNWriterh w) { return note(w, "close"); };
        writer.string = [](JSNWriterh w, const char* text, QVStrSize len) {
            return note(w, std::string(text, static_cast<size_t>(len)));
        };
        writer.dbl = [](JSNWriterh w, double value, int32_t digits, int32_t decimals) {
            return note(
                w, (testing::Message() << value << ":" << digits << ":" << decimals).GetString());
        };
        writer.getBuffer = [](JSNWriterh w, char**, QVStrSize*) { return note(w, "buffer"); };
        writer.generic.destroy = [](QVGeneric*) { return QV_EOF; };
    }
};

struct MapWriterCalls : testing::Test {
    struct Json : QVJSON {
        RecordingWriter* writer;
        JSNWriterParms parms;
    };
    MapWriterCalls() {
        json.createWriter = [](QVJSONh self, const JSNWriterParms* parms) {
            static_cast<Json*>(self)->parms = *parms;
            RecordingWriter* w = static_cast<Json*>(self)->writer;
            return w == nullptr ? nullptr : &w->writer;
        };
        doc.p.jsonh = &json;
        doc.p.automap = &hand.map;
        hand.table("none");
        hand.table("t", "/root/t");
        hand.column("f", VAR_FAKEVARIABLE, nullptr);
        hand.column("c", VAR_CHAR, "/root/t/c", 1048576);
    }
    QVStatus write(RecordingWriter* writer) {
        json.writer = writer;
        char* buf = nullptr;
        QVStrSize bufLen = 0;
        return GetAutoMapBuf(&doc.doc, &buf, &bufLen, doc.host.journal());
    }
    HandDocument doc;
    HandMap hand;
    Json json{};
};

TEST_F(MapWriterCalls, AskForOneDocument) {
    RecordingWriter writer;
    EXPECT_QV_OK(write(&writer));
    // For the placeholder nothing follows TYPE.
    EXPECT_EQ(
        writer.asked,
        "{ DATASETS [ { DSNAME none TABLEPATH  close { DSNAME t TABLEPATH /root/t VARIABLES [ "
        "{ NAME f TYPE PATH  close { NAME c TYPE CHARACTER PATH /root/t/c CURRENT_LENGTH "
        "1048576:10:0 close close close close close buffer ");
    EXPECT_EQ(json.parms.inCei + json.parms.outCei, 2 * U_UTF8_CE);
    EXPECT_EQ(json.parms.flags, 0x10000u);
    EXPECT_EQ(json.parms.jnl, doc.host.journal());
    EXPECT_EQ(view(json.parms.desc, json.parms.descLen), "jmap map writer");
    doc.p.automap = nullptr;  // a document that is not finished: no tables
    RecordingWriter empty;
    ASSERT_QV_OK(write(&empty));
    EXPECT_EQ(empty.asked, "{ DATASETS [ close close buffer ");
}

TEST_F(MapWriterCalls, TheFirstFailureIsReturnedAndTheWriterStaysUntilItIsFreed) {
    EXPECT_QV_OK(GetAutoMapBufFree(&doc.doc));  // none yet
    RecordingWriter whole;
    doc.host.failAllocation(1);  // of the scratch buffer for paths
    EXPECT_QV(QV_NOMEM, write(&whole));
    EXPECT_QV(QV_NOMEM, write(nullptr));
    whole.calls = 0;
    ASSERT_QV_OK(write(&whole));
    for (int n = 1; n <= whole.calls; ++n) {
        RecordingWriter writer;
        writer.failAt = n;
        EXPECT_QV(QV_INTERNAL, write(&writer));
        EXPECT_EQ(writer.calls, n);
        EXPECT_QV(QV_EOF, GetAutoMapBufFree(&doc.doc));  // the writer's own status
        EXPECT_QV_OK(GetAutoMapBufFree(&doc.doc));
    }
}

}  // namespace
}  // namespace jmap::test
