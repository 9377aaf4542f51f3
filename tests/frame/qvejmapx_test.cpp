// The routines of qvejmapx.h that no operation of the table leads to.
#include "qvejmapx.h"

#include "core/pool.h"
#include "testkit/open_document.h"

namespace jmap::test {
namespace {

template <class Handle>
std::string pathOf(void (*write)(Handle, char*), Handle handle, QVStrSize length) {
    std::string path(static_cast<std::size_t>(length), '\0');
    write(handle, path.data());
    return path;
}

// A map of two tables, as texts: what each says of itself and of its columns.
std::string described(QVMemPtr map) {
    std::string text;
    JMAPTableh table = nullptr;
    while (jmapNextTable(map, &table) == QV_OK) {
        JMAPTableInfo t = {};
        jmapTableInfo(table, &t);
        text += view(t.name, t.nameLen);
        text += " " + slashes(pathOf(jmapTablePath, table, t.tablePathLen)) + " " +
                std::to_string(t.columnCount) + ":";
        JMAPColumnh column = nullptr;
        while (jmapNextColumn(table, &column) == QV_OK) {
            JMAPColumnInfo c = {};
            jmapColumnInfo(column, &c);
            text += " ";
            text += view(c.name, c.nameLen);
            text += " " + slashes(pathOf(jmapColumnPath, column, c.pathLen)) + " " +
                    std::to_string(c.type) + " " + std::to_string(c.length) + ";";
        }
        text += "\n";
    }
    return text;
}

TEST(Qvejmapx, DescribesTablesAndColumns) {
    const Scan scan(R"({"a":"xyz","b":[{"c":1}]})");
    EXPECT_EQ(described(scan.automap()),
              "root /root 2: ordinal_root /root 0 0; a /root/a 2 3;\n"
              "b /root/b 3: ordinal_root /root 0 0; ordinal_b /root/b 0 0; c /root/b/c 1 1;\n");
    EXPECT_EQ(described(nullptr), "");
}

TEST(Qvejmapx, ARecordCursorThatFailedStaysSo) {
    std::string text = "[0";
    while (text.size() < 1'000'000) {
        text += ",12345678";
    }
    const Scan scan(text + "]", {.compress = true});
    COMPPATHS* const second = scan.p()->chead->next;
    ASSERT_TRUE(second != nullptr && second->next != nullptr);
    std::string garbage(static_cast<size_t>(second->bufLen), '\xFF');
    char* const kept = std::exchange(second->buf, garbage.data());
    JMAPRecordCursorh cursor = nullptr;
    JMAPRecord record = {};
    ASSERT_QV_OK(jmapRecordsOpen(scan.doc(), &cursor));
    QVStatus rc = QV_OK;
    while (rc == QV_OK) {
        rc = jmapRecordsNext(cursor, &record);
    }
    EXPECT_QV(QV_NOMEM, rc);
    second->buf = kept;
    EXPECT_QV(QV_NOMEM, jmapRecordsNext(cursor, &record)) << "the third block does not come";
    EXPECT_QV_OK(jmapRecordsClose(cursor));
}

TEST(Qvejmapx, AnInputThatIsEndedLeavesNothing) {
    LoadedHost host;
    host.setAvailable(0);
    std::string text = "[{";
    for (int i = 0; i < 60'000; ++i) {
        text += "\"m" + std::to_string(i) + "\":" + std::to_string(i) + ",";
    }
    for (const bool ended : {false, true}) {
        {
            const Scan scan(host, text, {.cacheFile = scratchFile("cache"), .memLeave = 1});
            EXPECT_QV(JMAP_INCOMPLETE, scan.status);
            if (ended) {
                jmapEndInput(scan.doc());
            }
        }
        EXPECT_EQ(host.left(), "file") << "of the document that was not ended";
    }
}

}  // namespace
}  // namespace jmap::test
