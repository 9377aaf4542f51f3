// A user map completed from the automatic map of its document.
#include "automap/lengths.h"

#include "core/list.h"
#include "core/pool.h"
#include "core/text.h"
#include "testkit/testkit.h"

namespace jmap::test {
namespace {

// Two tables, "a" and "b"; the longest texts have 5 and 3 bytes.
constexpr const char* kJson = R"({"a":{"s":"abcde","n":1},"b":[{"t":"xyz"}]})";

// A map of one table; `columns` are its columns.
std::string mapOf(const std::string& columns) {
    return R"({"DATASETS":[{"DSNAME":"T","TABLEPATH":"/root/a","VARIABLES":[)" + columns + "]}]}";
}

std::string character(const std::string& path, const std::string& more) {
    return R"({"NAME":"c","TYPE":"CHARACTER","PATH":")" + path + "\"" + more + "}";
}

TEST(Lengths, AreTakenOverOrCompared) {
    const struct {
        const char* path;
        const char* more;
        const char* settled;  // length, "A" from the automatic map, "T" cuts, current length
        const char* note;     // its end
    } kCases[] = {
        {"/root/a/s", "", "5 A 5", "[c] in dataset [a] length set to 5"},
        {"/root/a/s", R"(,"LENGTH":4)", "4 T 5", "[T] user length 4, automap length 5"},
        {"/root/a/s", R"(,"LENGTH":6)", "6 5", "[T] user length 6, automap length 5"},
        {"/root/a/s", R"(,"LENGTH":5)", "5 5", ""},
        {"/root/b/t", "", "3 A 3", "[c] in dataset [b] length set to 3"},
        {"/root/a/x", "", "0 0", ""},
        {"/root/a/n", R"(,"TYPE":"NUMERIC")", "0 0", ""},
        // Both tables have the path: 9 bytes in the first, 4 in the second.
        {"/root", "", "9 A 4", "[T] user length 9, automap length 4"},
        {"/root", R"(,"LENGTH":7)", "7 T 4", "[T] user length 7, automap length 4"},
    };
    for (const auto& c : kCases) {
        for (const uint64_t failing : {0, 1}) {  // the second has no memory for an index
            SCOPED_TRACE(std::string(c.path) + c.more);
            const Scan scan(kJson);
            VARINFO* first = scan.p()->automap->dshead->vhead;
            first->length = 9;
            first->next->path = first->path;  // the table has it already
            first->next->pathLen = first->pathLen;
            first->next->length = 50;
            scan.p()->automap->dstail->vhead->length = 4;
            ASSERT_QV_OK(scan.readMap(mapOf(character(c.path, c.more))));
            scan.p()->debugUserMap = true;
            scan.host().failAllocation(failing);
            getAutomapLengths(scan.p());
            JMAPColumnInfo info{};
            jmapColumnInfo(scan.p()->usermap->dshead->vhead, &info);
            EXPECT_EQ(std::to_string(info.length) + (info.lengthFromAutomap != 0 ? " A" : "") +
                          (info.truncation != 0 ? " T " : " ") + std::to_string(info.currentLength),
                      c.settled);
            const std::vector<std::string>& notes = scan.host().notes;
            EXPECT_TRUE(notes.empty() ? *c.note == '\0' : notes.back().ends_with(c.note));
        }
    }
}

std::string entriesOf(INFORMATINFO* list) {
    std::string all;
    for (INFORMATINFO& entry : each(list)) {
        all += std::string(view(entry.variable, entry.variableLen)) + " " +
               std::string(view(entry.informat, entry.informatLen)) + " " +
               std::to_string(*entry.informatWidth) + " " + std::to_string(*entry.length) +
               (entry.informatNoError != 0 ? " ?" : "") +
               (entry.lengthFromAutomap != 0 ? " A; " : "; ");
        *entry.informatWidth = 77;  // the map's own
    }
    return all;
}

TEST(Lengths, InformatsOfCharacterColumnsAreListedForTheCaller) {
    const Scan scan(kJson);
    QVMemPtr map = scan.automap();
    INFORMATINFO other{}, *list = &other;
    QVPoolh pool = newPool(U"caller");
    const auto getUserMap = [&] {
        return scan.engine()->GetUserMap(scan.doc(), &map, pool, &list);
    };
    EXPECT_QV_OK(getUserMap());
    EXPECT_TRUE(map == nullptr && list == &other);
    ASSERT_QV_OK(scan.readMap(mapOf(character("/root/a/s", ""))));
    EXPECT_QV_OK(getUserMap());
    EXPECT_TRUE(map == scan.p()->usermap && list == &other);

    const std::string informat = R"(,"INFORMAT":["I",8])";
    ASSERT_QV_OK(scan.readMap(mapOf(character("/root/a/s", informat) + "," +
                                    character("/root/a/n", R"(,"TYPE":"NUMERIC")" + informat) +
                                    "," + character("/root/b/t", R"(,"INFORMAT":["?Quiet"])"))));
    EXPECT_QV_OK(scan.engine()->GetUserMap(scan.doc(), &map, nullptr, nullptr));
    scan.host().failAllocation(4);  // two of the index, first entry, second entry
    EXPECT_QV(QV_NOMEM, getUserMap());
    EXPECT_EQ(entriesOf(list), "c I 8 5 A; ");
    EXPECT_QV_OK(getUserMap());
    EXPECT_EQ(entriesOf(list), "c I 77 5 A; c Quiet 0 3 ? A; ");
    EXPECT_QV_OK(destroyHandle(pool));
}

}  // namespace
}  // namespace jmap::test
