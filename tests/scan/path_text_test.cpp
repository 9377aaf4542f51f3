// Path text: the two forms, comparing.
#include "scan/path_text.h"

#include "testkit/open_document.h"

namespace jmap::test {
namespace {

TEST(PathText, ComparesWithoutRegardToAsciiCase) {
    static constexpr struct {
        std::string_view a, b;
        int equal;
    } kCases[] = {{"aZ09", "Az09", 1}, {"a", "a ", 0},  {"[", "{", 0}, {"@", "`", 0},
                  {"", "", 1},         {"ab", "aC", 0}, {"z", "Z", 1}, {"\xE1", "\xC1", 0}};
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.a);
        EXPECT_EQ(c.equal, charNormCompare(c.a.data(), lengthOf(c.a), c.b.data(), lengthOf(c.b)));
        EXPECT_EQ(c.equal, charNormCompare(c.b.data(), lengthOf(c.b), c.a.data(), lengthOf(c.a)));
    }
}

TEST(PathText, ShowsSlashesUnlessThereIsNoMemory) {
    HandDocument doc;
    JMAP_PRIVATE* p = &doc.p;
    std::string path = "a/b//c";
    slashToSep(p, path.data(), 4);
    EXPECT_EQ(internalPath("a/b/") + "/c", path);
    EXPECT_EQ("a/b//c", shown(p, path));
    doc.host.failAllocation(1);
    EXPECT_EQ("", shown(p, std::string(100, 'x')));
    EXPECT_EQ("a/b//c", shown(p, path)) << "the buffer is made anew";
    EXPECT_EQ("a/b//c", shown2(p, path));
    EXPECT_EQ("", shown2(p, ""));
}

}  // namespace
}  // namespace jmap::test
