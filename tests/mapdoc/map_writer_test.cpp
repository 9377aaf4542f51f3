// The map document.
#include "mapdoc/map_writer.h"

#include "testkit/hand_map.h"

namespace jmap::test {
namespace {

QVStatus written(HandDocument& doc, std::string_view& text) {
    char* buf = nullptr;
    QVStrSize bufLen = 0;
    const QVStatus rc = GetAutoMapBuf(&doc.doc, &buf, &bufLen, doc.host.journal());
    text = rc == QV_OK ? view(buf, bufLen) : "";
    return rc;
}

TEST(MapWriter, WritesAnEmptyMapOfADocumentThatIsNotFinished) {
    HandDocument doc;
    std::string_view text;
    EXPECT_QV_OK(written(doc, text));
    EXPECT_EQ(text, R"({"DATASETS":[]})");
    EXPECT_EQ(doc.host.leftovers().back(), "writer jmap map writer");
}

// A writer that only counts its calls; one of them fails.
int calls, failing;

QVStatus answer() {
    return ++calls == failing ? QV_INTERNAL : QV_OK;
}

JSNWriterh createCounting(QVJSONh, const JSNWriterParms*) {
    static JSNWriter writer;
    writer.open = [](JSNWriterh, int32_t) { return answer(); };
    writer.close = [](JSNWriterh) { return answer(); };
    writer.string = [](JSNWriterh, const char*, QVStrSize) { return answer(); };
    writer.dbl = [](JSNWriterh, double, int32_t, int32_t) { return answer(); };
    writer.getBuffer = [](JSNWriterh, char**, QVStrSize*) { return answer(); };
    writer.generic.destroy = [](QVGeneric*) { return QV_EOF; };
    calls = 0;
    return &writer;
}

TEST(MapWriter, ReturnsTheFirstFailureAndKeepsTheWriterUntilItIsFreed) {
    HandDocument doc;
    std::string_view text;
    EXPECT_QV_OK(GetAutoMapBufFree(&doc.doc));  // none yet
    ASSERT_QV_OK(doc.document.feed(R"({"a":[{"b":"c"}]})", true));
    doc.p.jsonh->createWriter = [](QVJSONh, const JSNWriterParms*) { return JSNWriterh{}; };
    EXPECT_QV(QV_NOMEM, written(doc, text));
    doc.p.jsonh->createWriter = createCounting;
    doc.host.failAllocation(1);  // of the scratch buffer for paths
    EXPECT_QV(QV_NOMEM, written(doc, text));
    failing = 0;
    ASSERT_QV_OK(written(doc, text));
    const int all = calls;
    for (failing = 1; failing <= all; ++failing) {
        EXPECT_QV(QV_INTERNAL, written(doc, text));
        EXPECT_EQ(calls, failing);
        EXPECT_QV(QV_EOF, GetAutoMapBufFree(&doc.doc));  // the writer's own status
        EXPECT_QV_OK(GetAutoMapBufFree(&doc.doc));
    }
}

}  // namespace
}  // namespace jmap::test
