#include "bindings/sqlite/api.h"
#include "bindings/sqlite/open_file.h"
#include "client/table_pass.h"
#include "testkit/scratch_folder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

extern "C" {
SQLITE_EXTENSION_INIT1
}

namespace jmap::test {
namespace {

using qvej::sqlite::FileOptions;
using qvej::sqlite::OpenFile;
using qvej::sqlite::OpenFiles;

class KeptFiles : public ::testing::Test {
   protected:
    FileOptions file(const std::string& name) const {
        return {folder_.write(name,
                              R"([{"text":")" + std::string(20'000, 'x') + R"("},{"text":"y"}])")};
    }
    static std::size_t rowsOf(const OpenFile& file) {
        const qvej::Table& table = *file.schema().tables.at(0).table;
        qvej::TablePass pass(file.document(), {&table});
        qvej::PassRow row(file.document(), table);
        std::size_t rows = 0;
        for (qvej::PassItem item; pass.next(item);) {
            rows += row.take(item) ? 1 : 0;
        }
        return rows;
    }
    ScratchFolder folder_;
};

TEST_F(KeptFiles, AreDroppedWhenOthersWereUsedSince) {
    const FileOptions a = file("a.json"), b = file("b.json"), c = file("c.json");
    const uint64_t one = OpenFiles().open(a)->held();
    OpenFiles files(one * 5 / 2);  // two of them
    const std::weak_ptr<const OpenFile> first = files.open(a);
    const std::weak_ptr<const OpenFile> second = files.open(b);
    EXPECT_FALSE(first.expired());
    EXPECT_EQ(first.lock(), files.open(a));  // b is the one that was not used for longest
    const std::weak_ptr<const OpenFile> third = files.open(c);
    EXPECT_FALSE(first.expired());
    EXPECT_TRUE(second.expired());
    EXPECT_FALSE(third.expired());
    EXPECT_EQ(2U, rowsOf(*files.open(b)));  // read anew
    EXPECT_TRUE(first.expired());
    EXPECT_FALSE(third.expired());
}

TEST_F(KeptFiles, StayWhileTheyAreInUse) {
    const FileOptions a = file("a.json"), b = file("b.json"), c = file("c.json");
    OpenFiles files(1);
    const std::shared_ptr<const OpenFile> used = files.open(a);
    const std::weak_ptr<const OpenFile> unused = files.open(b);
    EXPECT_EQ(used, files.open(a));
    std::shared_ptr<const OpenFile> last = files.open(c);
    EXPECT_TRUE(unused.expired());
    EXPECT_EQ(used, files.open(a));
    EXPECT_EQ(last, files.open(c));
    EXPECT_EQ(2U, rowsOf(*used));
}

}  // namespace
}  // namespace jmap::test
