// The map document.
#include "mapdoc/map_writer.h"

#include "testkit/hand_map.h"

namespace jmap::test {
namespace {

TEST(MapWriter, WritesAnEmptyMapOfADocumentThatIsNotFinishedAndKeepsItsWriterUntilItIsFreed) {
    HandDocument doc;
    char* buf = nullptr;
    QVStrSize bufLen = 0;
    EXPECT_QV_OK(GetAutoMapBufFree(&doc.doc));  // none yet
    EXPECT_QV_OK(GetAutoMapBuf(&doc.doc, &buf, &bufLen, doc.host.journal()));
    EXPECT_EQ(view(buf, bufLen), R"({"DATASETS":[]})");
    EXPECT_EQ(doc.host.leftovers().back(), "writer jmap map writer");
    EXPECT_QV_OK(GetAutoMapBufFree(&doc.doc));
    EXPECT_EQ(joined(doc.host.leftovers()).find("writer"), std::string::npos);
}

}  // namespace
}  // namespace jmap::test
