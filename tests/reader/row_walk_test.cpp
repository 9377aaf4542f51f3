// Rows made from the events of a scan, against those of a pass over its records.
#include "reader/row_walk.h"

#include "odd_map.h"
#include "testkit/random_document.h"

#include <functional>

namespace jmap::test {
namespace {

using Tables = std::vector<JMAPTableh>;
using Stop = std::function<QVStatus(std::size_t)>;  // what `take` gives to the n-th item

Tables tablesOf(QVMemPtr map) {
    Tables tables;
    JMAPTableh table = nullptr;
    while (jmapNextTable(map, &table) == QV_OK) {
        tables.push_back(table);
    }
    return tables;
}

std::string shown(const JMAPPassCell& cell) {
    std::string text =
        "|" + std::to_string(cell.kind) + (cell.fresh ? "+" : "-") + (cell.strayed ? "!" : "");
    if (cell.kind == JMAP_CELL_COUNT) {
        return text + std::to_string(cell.count);
    }
    return cell.kind == JMAP_CELL_MISSING ? text : text.append(view(cell.text, cell.textLen));
}

std::string shown(const JMAPPassItem& item) {
    std::string line = std::to_string(item.kind) + " " + std::to_string(item.table);
    for (QVStrSize i = 0; i < item.cellCount + item.textCount; ++i) {
        line += shown(item.cells[i]);
    }
    return item.kind == JMAP_PASS_ROW ? line
                                      : line + " column " + std::to_string(item.column) + " " +
                                            std::string(view(item.text, item.textLen));
}

// What a pass or a walk says when it has come to its end.
void addEnd(JMAPPassh pass, const Tables& tables, Names* items) {
    for (std::size_t i = 0; i < tables.size(); ++i) {
        const JMAPPassCell* cells = nullptr;
        QVStrSize count = 0;
        jmapPassLeft(pass, static_cast<QVStrSize>(i), &cells, &count);
        std::string line = "left";
        for (QVStrSize column = 0; column < count; ++column) {
            JMAPPassColumn info;
            jmapPassColumn(pass, static_cast<QVStrSize>(i), column, &info);
            line += shown(cells[column]) + " " + std::to_string(info.values) + "," +
                    std::to_string(info.overwritten) + "," + std::to_string(info.firstOverwritten) +
                    "," + std::to_string(info.strayed) + "," + std::to_string(info.below);
        }
        items->push_back(line);
    }
    items->push_back("roots " + std::to_string(jmapPassRoots(pass)));
}

Names itemsOfPass(const Scan& scan, const Tables& tables, uint64_t flags) {
    Names items;
    JMAPPassh pass = nullptr;
    EXPECT_QV_OK(jmapPassOpen(scan.doc(), tables.data(), static_cast<QVStrSize>(tables.size()),
                              flags, &pass));
    JMAPPassItem item;
    while (jmapPassNext(pass, &item) == QV_OK) {
        items.push_back(shown(item));
    }
    addEnd(pass, tables, &items);
    EXPECT_QV_OK(jmapPassClose(pass));
    return items;
}

// A walk over a text, for tables of another document.
class Walk {
   public:
    Walk(const Scan& tablesOf, Tables tables)
        : document(tablesOf.host()), from_(tablesOf.doc()), tables_(std::move(tables)) {
        EXPECT_QV_OK(document.init());
    }
    ~Walk() {
        if (status != QV_OK && document.doc != nullptr) {
            jmapEndInput(document.doc);
        }
        EXPECT_QV_OK(handle == nullptr ? QV_OK : jmapPassClose(handle));
    }
    bool open(uint64_t flags = 0) {
        status = jmapWalkOpen(document.doc, from_, tables_.data(),
                              static_cast<QVStrSize>(tables_.size()), flags, take, this, &handle);
        return status == QV_OK;
    }
    // Feeds a text in buffers of `split` bytes.  Each is overwritten when it has been parsed.
    void feed(std::string_view text, std::size_t split = 0) {
        split = split == 0 ? text.size() : split;
        for (bool done = false; !done && status == QV_OK;) {
            std::string piece(text.substr(0, split));
            text.remove_prefix(piece.size());
            done = text.empty();
            QVBoolean caching = 0;
            status = document.engine->JsonInput(document.doc, piece.data(), lengthOf(piece),
                                                done ? 1 : 0, &caching, nullptr);
            std::fill(piece.begin(), piece.end(), '#');
        }
    }
    // All items and the end.
    Names all(std::string_view text, std::size_t split = 0, uint64_t flags = 0) {
        if (open(flags)) {
            feed(text, split);
        }
        EXPECT_QV_OK(status);
        addEnd(handle, tables_, &items);
        return items;
    }

    Document document;
    JMAPPassh handle = nullptr;
    QVStatus status = QV_OK;  // of opening, then of the last JsonInput
    Names items;
    Stop stop;

   private:
    static QVStatus take(void* arg, const JMAPPassItem* item) {
        auto* walk = static_cast<Walk*>(arg);
        walk->items.push_back(shown(*item));
        return walk->stop ? walk->stop(walk->items.size()) : QV_OK;
    }
    QVEJMAPJsonContexth from_;
    Tables tables_;
};

// Requires the same items of both, and returns how many there are.
std::size_t expectSame(const Scan& scan, QVMemPtr map, std::string_view text,
                       const std::vector<std::size_t>& splits) {
    const Tables tables = tablesOf(map);
    std::size_t count = 0;
    for (const uint64_t flags : {uint64_t{0}, uint64_t{QVEJMAP_RETAIN}}) {
        const Names pass = itemsOfPass(scan, tables, flags);
        for (const std::size_t split : splits) {
            const Names walk = Walk(scan, tables).all(text, split, flags);
            for (std::size_t i = 0; i < std::min(pass.size(), walk.size()); ++i) {
                if (pass[i] != walk[i]) {
                    ADD_FAILURE() << "item " << i << " with buffers of " << split << "\npass "
                                  << slashes(pass[i]) << "\nwalk " << slashes(walk[i]);
                    return 0;
                }
            }
            EXPECT_EQ(pass.size(), walk.size());
        }
        count += pass.size() - tables.size() - 1;
    }
    return count;
}

TEST(RowWalk, GivesTheItemsOfAPassForEveryKindOfTable) {
    HandMap hand;
    makeOddMap(&hand, false);
    std::size_t items = 0;
    for (unsigned seed = 0; seed < 20; ++seed) {
        SCOPED_TRACE(seed);
        const std::string text = RandomDocument(seed, {"a", "b", "ab"}).text(6);
        const Scan scan(text);
        items += expectSame(scan, &hand.map, text, {0, 1});
        items += expectSame(scan, scan.automap(), text, {0, 3});
    }
    EXPECT_GT(items, 3000U);
}

// Paths that have one text and are not one: see memberIsUnsure in scan/path_tree.cpp.
TEST(RowWalk, GoesByTextsWhenNamesAreOdd) {
    HandMap hand;
    makeOddMap(&hand, false);
    for (const char* path : {"/root/", "/root//", "/root/a/", "/root/a1", "/root/element1"}) {
        hand.table("odd", path);
        for (const VARTYPE type : {VAR_ORDINAL, VAR_DOUBLE, VAR_CHAR}) {
            for (const char* of : {"/root", "/root/", "/root//", "/root//a", "/root/a/", "/root/a1",
                                   "/root/a/a1", "/root/a/a2", "/root/element1", "/root/a/b"}) {
                hand.column("x", type, of);
            }
        }
    }
    const Names names[] = {{"a", "b", "a\\u0002b", "b\\u0002b", "\\u0002"},
                           {"a", "", "b"},
                           {"a", "b", "a1", "a2", "element1", "element", "1"},
                           {"a", "", "b", "a1", "a\\u0002b", "\\u0002a1", "element1"}};
    std::size_t items = 0;
    for (unsigned seed = 0; seed < 24; ++seed) {
        SCOPED_TRACE(seed);
        const std::string text = RandomDocument(seed, names[seed % std::size(names)]).text(8);
        const Scan scan(text);
        items += expectSame(scan, &hand.map, text, {0, 5});
        items += expectSame(scan, scan.automap(), text, {0, 5});
    }
    EXPECT_GT(items, 2000U);
}

TEST(RowWalk, GivesTheItemsOfAPassForRealDocuments) {
    std::size_t items = 0;
    for (const char* name : {"apache_builds.json", "github_events.json", "instruments.json",
                             "numbers.json", "random.json", "tree-pretty.json",
                             "twitterescaped.json", "google_maps_api_response.json"}) {
        const std::optional<std::string> text = sharedFile(name);
        if (!text) {
            GTEST_SKIP() << "no " << name;
        }
        SCOPED_TRACE(name);
        const Scan scan(*text);
        items += expectSame(scan, scan.automap(), *text, {0, 64});
    }
    EXPECT_GT(items, 5000U);
}

// Texts of a buffer, copies of others, and those that are too long for the room of copies.
TEST(RowWalk, KeepsTextsAsLongAsRowsAreOpen) {
    const std::string digits(70'000, '1');
    std::string text =
        R"([{"open":"\u0041 open","n":)" + digits + R"(,"kept":"in the buffer","a":[)";
    for (int i = 0; i < 12; ++i) {
        const auto size = static_cast<std::size_t>(32'764 + i % 6);
        text += R"({"b":")" + std::string(size, static_cast<char>('a' + i % 26)) + R"(","c":"\n)" +
                std::string(size - 1, 'c') + R"(","e":1e5,"t":true,"z":null},)";
    }
    text += "{}]}]";
    const Scan scan(text);
    HandMap hand;
    makeOddMap(&hand, false);
    EXPECT_GT(expectSame(scan, scan.automap(), text, {0, 1000, 40'000}), 24U);
    EXPECT_GT(expectSame(scan, &hand.map, text, {0, 1000}), 24U);
}

TEST(RowWalk, EndsWithTheStatusOfItsCaller) {
    const std::string text = R"([{"a":[{"b":1},{"b":2}]},{"a":[{"b":"x"}],"c":3},{"a":[{"b":5}]}])";
    const Scan scan(text);
    const Tables tables = tablesOf(scan.automap());
    const std::size_t items = Walk(scan, tables).all(text).size() - tables.size() - 1;
    EXPECT_GE(items, 5U);
    for (const QVStatus status : {QV_EOF, QV_NEEDMORE, QV_NOMEM, QVStatus{JMAP_NOTABLE}, 5}) {
        for (std::size_t last = 1; last <= items; ++last) {
            for (const std::size_t split : {0, 1}) {
                Walk walk(scan, tables);
                walk.stop = [&](std::size_t n) { return n == last ? status : QV_OK; };
                ASSERT_TRUE(walk.open());
                walk.feed(text, split);
                EXPECT_EQ(status, walk.status);
                EXPECT_EQ(last, walk.items.size());
            }
        }
    }
}

TEST(RowWalk, RefusesWhatItCannotDo) {
    const std::string longName = R"([{")" + std::string(1'100'000, 'n') + R"(":1}])";
    const Scan scan(R"([{"a":1}])");
    JMAPTableh alldata = nullptr;
    ASSERT_QV_OK(jmapAlldataTable(scan.doc(), &alldata));
    Walk every(scan, {tablesOf(scan.automap())[0], alldata});
    EXPECT_FALSE(every.open());
    EXPECT_QV(JMAP_NOTABLE, every.status);
    EXPECT_NE(QV_OK, Scan(longName).status);
    Walk walk(scan, tablesOf(scan.automap()));
    ASSERT_TRUE(walk.open());
    walk.feed(longName);
    EXPECT_QV(QV_NOMEM, walk.status) << "as no record can hold it";
}

TEST(RowWalk, SurvivesEveryFailureOfMemory) {
    FakeHost host;
    const std::string text = R"([{"a":[{"b":"\n1"},{"b":"x"}],"c":12},{"c":"\u0002","":{"a":5}}])";
    const Scan scan(host, text);
    const Names before = host.leftovers();
    uint64_t n = 1;
    for (bool failed = true; failed; ++n) {
        Walk walk(scan, tablesOf(scan.automap()));
        host.failAllocation(n);
        if (walk.open()) {
            walk.feed(text, 10);
        }
        host.failAllocation(0);
        failed = walk.status != QV_OK;
        if (failed && walk.status != JMAP_PARSE) {
            EXPECT_QV(QV_NOMEM, walk.status);
        }
        if (walk.status == JMAP_PARSE) {  // the scan itself
            EXPECT_QV(QV_NOMEM, walk.document.doc->e.rc);
        }
    }
    EXPECT_GT(n, 40U);
    EXPECT_EQ(before, host.leftovers());
}

// The parts of a text: whole elements of its outermost array.
Names itemsOfParts(const Scan& scan, const Tables& tables, const Names& elements, std::size_t cut,
                   bool* left) {
    Names items;
    std::vector<uint64_t> counts;
    for (const bool last : {false, true}) {
        Walk walk(scan, tables);
        EXPECT_TRUE(walk.open());
        std::vector<uint64_t*> places;
        for (std::size_t i = 0; i < tables.size(); ++i) {
            JMAPTableInfo info;
            jmapTableInfo(tables[i], &info);
            for (uint64_t column = 0; column < info.columnCount; ++column) {
                places.push_back(jmapWalkCount(walk.handle, static_cast<QVStrSize>(i),
                                               static_cast<QVStrSize>(column)));
            }
        }
        for (std::size_t i = 0; last && i < places.size(); ++i) {
            if (places[i] != nullptr) {
                *places[i] = counts[i];
            }
        }
        EXPECT_QV_OK(last ? QV_OK : jmapWalkPart(walk.handle, "\x02root", 5));
        const auto begin = elements.begin() + static_cast<std::ptrdiff_t>(last ? cut : 0);
        const auto end =
            last ? elements.end() : elements.begin() + static_cast<std::ptrdiff_t>(cut);
        walk.feed("[" + joined({begin, end}) + "]");
        EXPECT_QV_OK(walk.status);
        *left = *left || (!last && jmapWalkLeft(walk.handle) != 0);
        for (const uint64_t* place : places) {
            counts.push_back(place == nullptr ? 0 : *place);
        }
        items.insert(items.end(), walk.items.begin(), walk.items.end());
    }
    return items;
}

// Items of one table keep their order, but parts end the rows of several tables in another one.
Names sortedByTable(Names items) {
    std::stable_sort(items.begin(), items.end(), [](const std::string& a, const std::string& b) {
        return std::stoi(a.substr(2)) < std::stoi(b.substr(2));
    });
    return items;
}

TEST(RowWalk, GivesInPartsWhatItGivesAtOnce) {
    HandMap hand;
    makeOddMap(&hand, false);
    std::size_t same = 0;
    std::size_t left = 0;
    for (unsigned seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        Names elements;
        for (unsigned i = 0; i < 4; ++i) {
            RandomDocument random(5 * seed + i, {"a", "b", "ab"});
            const std::string value = random.text(2);
            elements.push_back(R"({"a":)" + value + R"(,"b":1,"x":)" + value + "}");
        }
        const std::string text = "[" + joined(elements) + "]";
        const Scan scan(text);
        for (QVMemPtr map : {scan.automap(), QVMemPtr{&hand.map}}) {
            const Tables tables = tablesOf(map);
            Walk whole(scan, tables);
            ASSERT_TRUE(whole.open());
            whole.feed(text);
            for (std::size_t cut = 1; cut < elements.size(); ++cut) {
                bool isLeft = false;
                const Names parts = itemsOfParts(scan, tables, elements, cut, &isLeft);
                left += isLeft ? 1 : 0;
                if (!isLeft) {
                    EXPECT_EQ(sortedByTable(whole.items), sortedByTable(parts)) << text;
                    ++same;
                }
            }
        }
    }
    EXPECT_GT(same, 60U);
    EXPECT_GT(left, 60U);
}

}  // namespace
}  // namespace jmap::test
