// What becomes of the values of a document: nothing is lost that is not counted, and ALLDATA has
// everything.
#include "client/account.h"

#include "tests/client/read_document.h"
#include "tests/json/event_log.h"
#include "tests/testkit/random_document.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace {

using jmap::test::ReadDocument;

const std::vector<std::string> kNames = {"a", "b", "", "a1", "a\\u0002b"};

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
        EXPECT_LE(account.strayed.count, account.cells) << qvej::withSlashes(account.path);
        EXPECT_EQ(account.strayed.count == 0, account.strayed.first == 0);
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
    const ReadDocument read(text);
    const qvej::Document& document = read.document;
    const uint64_t scalars = scalarsOf(text);
    EXPECT_EQ(scalars, valuesInAlldata(document));
    const std::vector<qvej::PathAccount> accounts = qvej::accountOf(document, false);
    const std::string found = sums(accounts);
    EXPECT_EQ(std::to_string(scalars), found.substr(0, found.find('=')));
    (void)sums(qvej::accountOf(document, true));
    const std::vector<const qvej::Table*> tables = read.tables();
    qvej::TablePass pass(document, tables);
    for (qvej::PassItem item = {}; pass.next(item);) {
    }
    uint64_t lost = 0;
    qvej::RowLosses inRows;
    for (const qvej::PathAccount& path : accounts) {
        lost += path.values - path.cells -
                path.lost[static_cast<std::size_t>(qvej::Loss::REJECTED)].count;
        inRows.overwritten += path.lost[static_cast<std::size_t>(qvej::Loss::OVERWRITTEN)].count;
        inRows.strayed += path.strayed.count;
    }
    EXPECT_EQ(lost, qvej::lostOf(document, pass, tables));
    EXPECT_EQ(inRows.overwritten, qvej::rowLossesOf(pass, tables).overwritten);
    EXPECT_EQ(inRows.strayed, qvej::rowLossesOf(pass, tables).strayed);
    return found;
}

// The objects around each scalar, by the events of the document alone.
//
// Rows are numbered by markers: an object writes one, and so does an array when it begins an array
// or follows one, when it is empty, and, if it is a member, for a scalar while the count of
// elements is 0, which the end of every array sets it to.
class Ancestors {
   public:
    using Objects = std::map<std::string, uint64_t>;  // path -> number of its marker

    explicit Ancestors(const std::string& text) {
        std::istringstream events(jmap::test::parseIn(text, 0));
        std::string event;
        events >> event;
        EXPECT_EQ(event, "QV_OK") << text;
        for (events >> event; events >> event;) {  // after the place
            take(event, events);
        }
    }

    // Of value `number`, from 1, of a path.
    [[nodiscard]] const Objects& of(const std::string& path, uint64_t number) const {
        return scalars_.at(path).at(number - 1);
    }
    [[nodiscard]] uint64_t count(const std::string& path) const {
        const auto found = scalars_.find(path);
        return found == scalars_.end() ? 0 : found->second.size();
    }

   private:
    enum Last { VALUE, ARRAY_START, ARRAY_END };
    struct Level {
        bool array;
        bool member;
        std::string name;
        std::string path;
        Objects objects;  // that enclose what is in it
    };

    void take(const std::string& event, std::istream& events) {
        if (event == "name") {
            events >> key_;
            key_ = key_.substr(1, key_.size() - 2);
            const std::size_t separator = key_.find("<02>");
            key_ = separator == std::string::npos ? key_ : key_.replace(separator, 4, "\x02");
            last_ = VALUE;
        } else if (event == "{") {
            push(false);
            levels_.back().objects[levels_.back().path] = mark();
        } else if (event == "[") {
            push(true);
            if (last_ != VALUE) {
                mark();
            }
            last_ = ARRAY_START;
        } else if (event == "}") {
            levels_.pop_back();
            last_ = VALUE;
        } else if (event == "]") {
            if (last_ == ARRAY_START) {
                mark();
            }
            elements_ = 0;
            levels_.pop_back();
            last_ = ARRAY_END;
        } else if (event != "int" && event != "real") {  // their digits follow
            scalar();
        }
    }

    void push(bool array) {
        Level level = {array, false, {}, "\x02root", {}};
        if (!levels_.empty()) {
            level.member = !levels_.back().array;
            level.name = level.member ? key_ : "";
            level.path = levels_.back().path + (level.member ? "\x02" + key_ : "");
            level.objects = levels_.back().objects;
        }
        levels_.push_back(level);
    }
    uint64_t mark() { return ++markers_[levels_.back().path]; }

    void scalar() {
        const Level& level = levels_.back();
        std::string name = key_;
        if (level.array) {
            if (level.member && elements_ == 0) {
                mark();
            }
            name = (level.member ? level.name : "element") + std::to_string(++elements_);
        }
        const std::string path = level.path + (name.empty() ? "" : "\x02" + name);
        scalars_[path].push_back(level.objects);
        last_ = VALUE;
    }

    std::vector<Level> levels_;
    std::string key_;
    Last last_ = VALUE;
    uint64_t elements_ = 0;
    std::map<std::string, uint64_t> markers_;
    std::map<std::string, std::vector<Objects>> scalars_;
};

// Does every ordinal of the row count an object around the value, if it counts its path at all?
bool isOfItsRow(const Ancestors::Objects& objects, const qvej::Table& table,
                const qvej::PassItem& row) {
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const auto object = objects.find(table.columns[i].path);
        const bool ordinal = table.columns[i].type == qvej::ColumnType::ORDINAL;
        if (ordinal && object != objects.end() && object->second != row.cells[i].count) {
            return false;
        }
    }
    return true;
}

// Requires that every value is in a row of the objects around it, or strayed.  Returns how many are
// in a row of others.
uint64_t valuesOfOthers(const std::string& text, bool retain) {
    const ReadDocument read(text);
    const Ancestors ancestors(text);
    const std::vector<const qvej::Table*> tables = read.tables();
    qvej::TablePass pass(read.document, tables, retain);
    uint64_t ofOthers = 0;
    for (qvej::PassItem item = {}; pass.next(item);) {
        const qvej::Table& table = *tables[item.table];
        for (std::size_t i = 0; i < item.cells.size(); ++i) {
            const qvej::PassCell& cell = item.cells[i];
            EXPECT_TRUE(cell.fresh != 0 || cell.strayed == 0) << "of an earlier row";
            if (cell.fresh == 0 || table.columns[i].type == qvej::ColumnType::ORDINAL) {
                continue;
            }
            const std::string& path = table.columns[i].path;
            const auto& objects = ancestors.of(path, pass.column(item.table, i).values);
            if (!isOfItsRow(objects, table, item)) {
                ++ofOthers;
                EXPECT_TRUE(cell.strayed) << table.name << "." << table.columns[i].name;
            }
        }
    }
    for (const qvej::PathStatistics& path : read.document.pathStatistics()) {
        const bool placeholder = path.path.ends_with("\2FAKE");
        EXPECT_TRUE(placeholder || ancestors.count(path.path) == static_cast<uint64_t>(path.count))
            << qvej::withSlashes(path.path);
    }
    return ofOthers;
}

TEST(Account, EveryValueIsInARowOfItsObjectsOrStrayed) {
    uint64_t ofOthers = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        const std::string text = jmap::test::RandomDocument(seed, kNames).text(6);
        SCOPED_TRACE(text);
        ofOthers += valuesOfOthers(text, seed % 2 != 0);
    }
    EXPECT_GT(ofOthers, 100U);
}

TEST(Account, MeetsForRandomDocuments) {
    int lossy = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const std::string text = jmap::test::RandomDocument(seed, kNames).text(4);
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
