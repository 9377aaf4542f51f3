// When a scan ends before its document does.
#include "client/scan_guard.h"

#include "client/document.h"
#include "client/table_pass.h"

#include <gtest/gtest.h>

namespace {

using qvej::ScanGuard;

constexpr uint64_t kMost = UINT64_MAX;

TEST(ScanGuard, EndsAtEachLimitAndNamesIt) {
    const struct {
        const char* name;
        uint64_t maxPaths, leastMemory, memory, free;
        JMAPGrowth growth;
        QVStatus status;
        std::string sentence;
    } cases[] = {
        {"in bounds", 10, 5, 5, 1, {10, 1, 0, 0}, QV_OK, ""},
        {"no limit of paths", 0, 0, 1, 1, {1 << 30, 1, 0, 0}, QV_OK, ""},
        {"one path too many",
         1234,
         0,
         kMost,
         kMost,
         {1235, 1, 0, 0},
         QV_LIMIT_PATHS,
         "more than 1,234 distinct paths"},
        {"no memory",
         0,
         0,
         0,
         kMost,
         {1000, 1, 0, 0},
         QV_LIMIT_MEMORY,
         "more memory is needed than may be used, even without the records, for 1,000 distinct paths so far"},
        {"too little memory for the map",
         0,
         9,
         8,
         kMost,
         {9, 1, 0, 512},
         QV_LIMIT_MEMORY,
         "more memory is needed than may be used, even without the records, for 512 tables so far"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ScanGuard guard(c.maxPaths, c.leastMemory,
                        {[&] { return c.memory; }, [&] { return c.free; }});
        EXPECT_EQ(guard.check(c.growth), c.status);
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

// A document that is small itself; what its paths come to is not.
TEST(ScanGuard, EndsADocumentWithThePlaceAndTheWidestPath) {
    std::string text = R"({"meta":[1,2,3],"data":{"rows":)";
    for (int i = 0; i < 60; ++i) {
        text += "{\"" + std::string(300, 'n') + "\":";
    }
    text += "[1";
    for (int i = 0; i < 1000; ++i) {
        text += ",1";
    }
    text += "]" + std::string(62, '}');
    qvej::Engine engine;
    for (const uint64_t most : {0, 500, 5000}) {
        qvej::DocumentOptions options;
        options.maxPaths = most;
        qvej::Document document(engine, options);
        try {
            document.feed(text);
            document.finish();
            EXPECT_NE(most, 500U);
        } catch (const qvej::Error& error) {
            EXPECT_EQ(most, 500U);
            EXPECT_EQ(error.status(), QV_LIMIT_PATHS);
            EXPECT_TRUE(
                std::string(error.what())
                    .starts_with(
                        "more than 500 distinct paths; most are below /root/data/rows/nnn"));
            EXPECT_EQ(error.line(), 1);
            EXPECT_GT(error.column(), 500);
        }
    }
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
    qvej::EngineOptions budget;
    budget.memoryBudget = uint64_t{512} << 20;
    qvej::Engine engine(budget);
    qvej::Document document(engine);
    document.feed(text);
    document.finish();
    std::vector<const qvej::Table*> tables;
    for (const qvej::Table& table : document.tables()) {
        tables.push_back(&table);
    }
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
