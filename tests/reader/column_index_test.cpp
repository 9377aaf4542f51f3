// Columns by path.
#include "reader/column_index.h"

#include "tests/automap/hand_map.h"

#include <random>

namespace jmap::test {
namespace {

TEST(ColumnIndex, FindsWhatLookingThroughTheColumnsFinds) {
    HandDocument doc;
    std::mt19937 random(3);
    for (const uint32_t count : {0, 1, 200}) {
        // Few letters and lengths around 8 and 16, so that paths repeat and meet in one bucket.
        std::vector<std::string> paths(2 * count + 10);
        for (std::string& path : paths) {
            path.assign(1 + random() % 3, "ab"[random() % 2]);
            path.append((random() % 3) * 8, '-').append(1, "xy"[random() % 2]);
        }
        std::vector<VARINFO> columns(count + 1);  // the last has no path
        for (uint32_t i = 0; i < count; ++i) {
            columns[i].path = paths[i].data();
            columns[i].pathLen = lengthOf(paths[i]);
        }
        JMAP_READPRIVATE rp{};
        rp.varinfo = columns.data();
        rp.index = newColumnIndex(doc.p.cpool, columns.data(), static_cast<QVStrSize>(count + 1));
        ASSERT_NE(rp.index, nullptr);
        for (const std::string& path : paths) {
            uint32_t found = firstColumn(rp, path);
            for (uint32_t i = 0; i < count; ++i) {
                if (paths[i] == path) {
                    ASSERT_EQ(found, i) << path;
                    found = nextColumn(rp, i, path);
                }
            }
            EXPECT_EQ(found, kNoColumn) << path;
        }
    }
}

}  // namespace
}  // namespace jmap::test
