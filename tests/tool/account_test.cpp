// What becomes of the values of a document: nothing is lost that is not counted, and ALLDATA has
// everything.
#include "client/account.h"

#include "tests/testkit/random_document.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

// Counts scalars, by another parser.
uint64_t scalarsOf(const std::string& text) {
    uint64_t count = 0;
    const auto see = [&](int, nlohmann::json::parse_event_t event, const nlohmann::json&) {
        count += event == nlohmann::json::parse_event_t::value ? 1 : 0;
        return true;
    };
    EXPECT_FALSE(nlohmann::json::parse(text, see, false).is_discarded());
    return count;
}

// Rows of ALLDATA that have a value.
uint64_t valuesInAlldata(const qvej::Document& document) {
    qvej::TablePass pass(document, {&document.alldata()});
    std::size_t flag = 0;
    while (document.alldata().columns[flag].name != "V") {
        ++flag;
    }
    uint64_t count = 0;
    for (qvej::PassItem item = {}; pass.next(item);) {
        count += item.cells[flag].count;
    }
    return count;
}

// "values=cells+overwritten+no column+no row+rejected"
std::string sums(const std::vector<qvej::PathAccount>& accounts) {
    uint64_t values = 0;
    uint64_t cells = 0;
    std::array<uint64_t, qvej::kLosses> lost = {};
    for (const qvej::PathAccount& account : accounts) {
        EXPECT_TRUE(account.meets()) << qvej::withSlashes(account.path);
        values += account.values;
        cells += account.cells;
        for (std::size_t i = 0; i < qvej::kLosses; ++i) {
            lost[i] += account.lost[i].count;
            EXPECT_EQ(account.lost[i].count == 0, account.lost[i].first == 0);
        }
    }
    std::string text = std::to_string(values) + "=" + std::to_string(cells);
    for (const uint64_t count : lost) {
        text += "+" + std::to_string(count);
    }
    return text;
}

// The sums with the automatic map; all that must hold is checked.
std::string account(const std::string& text) {
    qvej::Engine engine;
    qvej::Document document(engine);
    document.feed(text);
    document.finish();
    const uint64_t scalars = scalarsOf(text);
    EXPECT_EQ(scalars, valuesInAlldata(document));
    const std::string found = sums(qvej::accountOf(document, false));
    EXPECT_EQ(std::to_string(scalars), found.substr(0, found.find('=')));
    (void)sums(qvej::accountOf(document, true));
    std::vector<const qvej::Table*> tables;
    for (const qvej::Table& table : document.tables()) {
        tables.push_back(&table);
    }
    qvej::TablePass pass(document, tables);
    for (qvej::PassItem item = {}; pass.next(item);) {
    }
    uint64_t lost = 0;
    for (const qvej::PathAccount& path : qvej::accountOf(document, false)) {
        lost += path.values - path.cells -
                path.lost[static_cast<std::size_t>(qvej::Loss::REJECTED)].count;
    }
    EXPECT_EQ(lost, qvej::lostOf(document, pass, tables));
    return found;
}

TEST(Account, MeetsForRandomDocuments) {
    int lossy = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const std::string text =
            jmap::test::RandomDocument(seed, {"a", "b", "", "a1", "a\\u0002b"}).text(4);
        SCOPED_TRACE(text);
        lossy += account(text).find("+0+0+0+0") == std::string::npos ? 1 : 0;
    }
    EXPECT_GT(lossy, 100);
}

TEST(Account, MeetsForRealDocuments) {
    const std::filesystem::path folder = JMAP_SOURCE_DIR "/../shared/data";
    if (!std::filesystem::is_directory(folder)) {
        GTEST_SKIP() << "no real documents at " << folder;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".json" && entry.file_size() < 1'000'000) {
            SCOPED_TRACE(entry.path());
            std::ifstream in(entry.path(), std::ios::binary);
            const std::string found = account({std::istreambuf_iterator<char>(in), {}});
            EXPECT_EQ(entry.path().filename() == "numbers.json",
                      found.find("+0+0+0+0") == std::string::npos)
                << found;
        }
    }
}

}  // namespace
