// Path text: the two forms, splitting, comparing.
#include "scan/path_text.h"

#include "scan_fixture.h"

namespace jmap::test {
namespace {

TEST(PathText, SplitsAtTheLastSeparator) {
    static constexpr struct {
        const char* path;
        const char* parts;  // first|last
    } kCases[] = {{"/root/a/b", "/root/a|b"}, {"/root", "|root"}, {"abc", "none|abc"},
                  {"/root/a/", "/root/a|"},   {"", "none|"},      {"a//", "a/|"}};
    const Context context;
    for (const auto& c : kCases) {
        std::string path = c.path;
        slashToSep(context.p, path.data(), lengthOf(path));
        const char* first = nullptr;
        const char* last = nullptr;
        QVStrSize firstLen = -1;
        QVStrSize lastLen = -1;
        EXPECT_EQ(0, splitPath(context.p, path.data(), lengthOf(path), &first, &firstLen, &last,
                               &lastLen));
        EXPECT_EQ(c.parts, (first == nullptr ? "none" : slashes(view(first, firstLen))) + "|" +
                               slashes(view(last, lastLen)));
        EXPECT_TRUE(first != nullptr || firstLen == 0);
    }
}

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

TEST(PathText, ShowsSlashesInABufferThatGrowsToTwiceThePath) {
    Context context;
    JMAP_PRIVATE* p = context.p;
    std::string path = "a/b//c";
    slashToSep(p, path.data(), 4);
    EXPECT_EQ(
        "a\x02"
        "b\x02/c",
        path);
    EXPECT_EQ("a/b//c", shown(p, path));
    EXPECT_EQ(12, p->sepLongest);
    EXPECT_EQ(std::string(11, 'x'), shown(p, std::string(11, 'x')));
    EXPECT_EQ(12, p->sepLongest) << "it fits";
    EXPECT_EQ(std::string(12, 'x'), shown(p, std::string(12, 'x')));
    EXPECT_EQ(24, p->sepLongest);
    context.host.failAllocation(1);
    EXPECT_EQ("", shown(p, std::string(100, 'x')));
    EXPECT_EQ("a/b//c", shown(p, path)) << "the buffer is made anew";
    EXPECT_EQ("a/b//c", shown2(p, path));
    EXPECT_EQ("", shown2(p, ""));
}

}  // namespace
}  // namespace jmap::test
