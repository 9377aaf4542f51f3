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
