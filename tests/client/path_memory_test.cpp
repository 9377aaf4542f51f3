// What a document keeps of each distinct path: its records are in a file, so that all memory is for
// the paths, from the scan to the map.
#include "qvportable.h"

#include "bench/shapes.h"
#include "client/document.h"
#include "client/table_pass.h"

#include <gtest/gtest.h>

namespace {

constexpr uint64_t kMostBytes = 300;         // of a path, without its name
constexpr uint64_t kNameBytes = 16;          // of a name in the documents below, as it is stored
constexpr uint64_t kMostBesides = 12 << 20;  // blocks, record heads, pieces that are free again

uint64_t bytesInUse(const qvej::Engine& engine) {
    QVPortableCounts counts = {};
    qvPortableCounts(engine.host(), &counts);
    return counts.bytesInUse;
}

std::string array(int count) {
    std::string text = "[1";
    for (int i = 1; i < count; ++i) {
        text += ",1";
    }
    return text + "]";
}

std::string object(int count) {
    std::string text = "{";
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "\"member" : ",\"member") + std::to_string(i) + "\":1";
    }
    return text + "}";
}

// `text` below 100 names of 100 bytes.
std::string deep(std::string text) {
    for (int i = 0; i < 100; ++i) {
        text = "{\"" + std::string(100, 'n') + "\":" + text + "}";
    }
    return text;
}

TEST(PathMemory, IsBoundedForEachPathHoweverLong) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "red zones count as memory in use";
#endif
    const struct {
        const char* name;
        std::string text;
        uint64_t paths;
    } cases[] = {
        {"elements", array(500'000), 500'000},
        {"members", object(300'000), 300'000},
        {"deep elements", deep(array(5'000)), 5'000},
        {"deep elements again and again", deep("[" + array(2'000) + "," + array(2'000) + "]"),
         2'000},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        qvej::Engine engine;
        const uint64_t before = bytesInUse(engine);
        qvej::Document document(engine, {.keepFree = UINT64_MAX});
        document.feed(c.text);
        document.finish();
        EXPECT_LT(bytesInUse(engine) - before, c.paths * (kMostBytes + kNameBytes) + kMostBesides);
        EXPECT_GT(document.automaticTables().front().columns.size(), c.paths);
    }
}

// Objects keyed by names: seven tables for each ten values, with ordinals of all that is around.
TEST(PathMemory, IsBoundedForEachTableAndItsOrdinals) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "red zones count as memory in use";
#endif
    constexpr uint64_t kPaths = 100'000;  // with values
    constexpr uint64_t kMostOfMap = 700;  // bytes for each
    constexpr uint64_t kMostOfPass = 760;
    qvej::Engine engine;
    const uint64_t before = bytesInUse(engine);
    qvej::Document document(engine, {.keepFree = UINT64_MAX});
    document.feed(jmap::bench::pathsOf(kPaths));
    document.finish();
    const uint64_t mapped = bytesInUse(engine);
    EXPECT_LT((mapped - before - kMostBesides) / kPaths, kMostOfMap);
    std::vector<const qvej::Table*> tables;
    for (const qvej::Table& table : document.tables()) {
        tables.push_back(&table);
    }
    EXPECT_EQ(tables.size(), kPaths / 10 * 7);
    const qvej::TablePass pass(document, tables);
    EXPECT_LT((bytesInUse(engine) - mapped) / kPaths, kMostOfPass);
}

}  // namespace
