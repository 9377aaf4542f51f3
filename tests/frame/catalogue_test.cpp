// Which tables a document has.
#include "core/text.h"
#include "testkit/testkit.h"

namespace jmap::test {
namespace {

constexpr const char* kTables = R"({"one":{"x":1},"Second":[{"yy":"abc"}]})";

TEST(Catalogue, NamesTablesByPosition) {
    const Scan scan(kTables);
    // The status, a buffer of dots afterwards, and the length that is reported.
    const auto nameOf = [&](QVMemPtr map, uint64_t index, int16_t len) {
        std::string buffer = "........";
        const QVStatus rc = scan.engine()->GetDsName(scan.doc(), map, index, buffer.data(), &len);
        return qvStatusName(rc) + (" " + buffer) + " " + std::to_string(len);
    };
    QVMemPtr map = scan.automap();
    EXPECT_EQ(nameOf(map, 0, 8), "QV_OK one..... 3");
    EXPECT_EQ(nameOf(map, 1, 6), "QV_OK Second.. 6");
    EXPECT_EQ(nameOf(map, 1, 4), "QV_OK Seco.... 4");
    EXPECT_EQ(nameOf(map, 1, -5), "QV_OK ........ 0");
    EXPECT_EQ(nameOf(map, 2, 8), "QV_EOF ........ 8");
    EXPECT_EQ(nameOf(nullptr, 0, 8), "QV_EOF ........ 8");
}

TEST(Catalogue, KnowsMembersByExactName) {
    const auto members = [](const Scan& scan, QVMemPtr map) {
        std::string found;
        for (std::string name : {"Second", "second", "Second2", "Secon", "All", "ALLDATA", ""}) {
            const auto len = static_cast<int16_t>(name.size());
            const QVStatus rc = scan.engine()->MemberExist(scan.doc(), map, len, name.data());
            found += rc == 0 ? "[" + name + "]" : "";
            EXPECT_EQ(scan.engine()->MemberExist(scan.doc(), map, -1, name.data()), 1);
        }
        return found;
    };
    const Scan scan(kTables, {.alldata = "All"}), unnamed(kTables, {.alldata = ""});
    EXPECT_EQ(members(scan, scan.automap()), "[Second][All]");
    EXPECT_EQ(members(scan, nullptr), "[All]");
    EXPECT_EQ(members(unnamed, unnamed.automap()), "[Second][]");
}

TEST(Catalogue, TellsLevelsLongestValueAndLongestNames) {
    const Scan scan(kTables);
    int32_t* info = nullptr;
    ASSERT_QV_OK(scan.engine()->GetAlldataInfo(scan.doc(), &info));
    EXPECT_EQ(std::vector<int32_t>(info, info + 4), (std::vector<int32_t>{2, 3, 6, 2}));
    scan.host().failAllocation(1);
    EXPECT_TRUE(scan.engine()->GetAlldataInfo(scan.doc(), &info) == QV_NOMEM && info == nullptr);
}

}  // namespace
}  // namespace jmap::test
