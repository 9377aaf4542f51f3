// When a scan ends before its document does.
#include "client/scan_guard.h"

#include "client/table_pass.h"
#include "tests/client/read_document.h"

#include <gtest/gtest.h>

namespace {

using qvej::ScanGuard;

constexpr uint64_t kMost = UINT64_MAX;

TEST(ScanGuard, EndsAtEachLimitAndNamesIt) {
    const std::string tooMuch =
        "more memory is needed than may be used, even without the records, for ";
    const struct {
        const char* name;
        uint64_t maxPaths, leastMemory, memory, paths, tables;
        QVStatus status;
        std::string sentence;
    } cases[] = {
        {"in bounds", 10, 5, 5, 10, 0, QV_OK, ""},
        {"no limit of paths", 0, 0, 1, 1 << 30, 0, QV_OK, ""},
        {"paths", 1234, 0, kMost, 1235, 0, QV_LIMIT_PATHS, "more than 1,234 distinct paths"},
        {"none", 0, 0, 0, 1000, 0, QV_LIMIT_MEMORY, tooMuch + "1,000 distinct paths so far"},
        {"for the map", 0, 9, 8, 9, 512, QV_LIMIT_MEMORY, tooMuch + "512 tables so far"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScanGuard guard(c.maxPaths, c.leastMemory,
                        {[&] { return c.memory; }, [] { return kMost; }});
        EXPECT_EQ(guard.check({c.paths, 1, 0, c.tables}), c.status);
        EXPECT_EQ(guard.failure() ? guard.failure()->what() : "", c.sentence);
    }
}

TEST(ScanGuard, LeavesASixteenthOfTheDisk) {
    std::optional<uint64_t> free = 1500;
    ScanGuard guard(0, 0, {[] { return kMost; }, [&] { return free; }});
    EXPECT_EQ(guard.check({1, 1, 100, 0}), QV_OK);  // of 1,600 bytes
    free = 100;
    EXPECT_EQ(guard.check({1, 1, 1500, 0}), QV_OK);
    free = std::nullopt;
    EXPECT_EQ(guard.check({1, 1, 1501, 0}), QV_OK) << "the system does not tell";
    free = 99;
    EXPECT_EQ(guard.check({1, 1, 0, 0}), QV_OK) << "nothing is there yet";
    EXPECT_EQ(guard.check({1, 1, 1501, 0}), QV_LIMIT_DISK);
    EXPECT_STREQ(guard.failure()->what(),
                 "the records would fill the disk: 1,501 bytes so far, 99 bytes free");
}

// What is held beyond the document ends a pass over its tables, when it opens and as it goes on.
TEST(ScanGuard, EndsAPass) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "most pages of the process are the sanitizer's";
#endif
    std::string text = R"({"wide":{)";
    for (int i = 0; i < 5000; ++i) {
        text += "\"n" + std::to_string(i) + "\":1,";
    }
    text += R"("n":1},"rows":[)";
    for (int i = 0; i < 100000; ++i) {
        text += R"({"v":1},)";
    }
    text += R"({"v":2}]})";
    const jmap::test::ReadDocument read(text, {.memoryBudget = uint64_t{512} << 20});
    const qvej::Document& document = read.document;
    const std::vector<const qvej::Table*> tables = read.tables();
    const auto statusOf = [](const auto& routine) {
        try {
            routine();
        } catch (const qvej::Error& error) {
            return error.status();
        }
        return QVStatus{QV_OK};
    };
    qvej::TablePass pass(document, tables);
    const auto walk = [&] {
        for (qvej::PassItem item; pass.next(item);) {
        }
    };
    const std::vector<char> held(std::size_t{560} << 20, 'x');
    EXPECT_EQ(statusOf(walk), QV_LIMIT_MEMORY);
    EXPECT_EQ(statusOf([&] { const qvej::TablePass another(document, tables); }), QV_LIMIT_MEMORY);
    EXPECT_EQ(statusOf([&] { (void)document.pathStatistics(); }), QV_LIMIT_MEMORY);
    EXPECT_EQ(held.back(), 'x');
}

}  // namespace
