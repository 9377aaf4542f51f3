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
    // `end`: the last one is the last of the document.
    void feed(std::string_view text, std::size_t split = 0, bool end = true) {
        split = split == 0 ? text.size() : split;
        for (bool done = false; !done && status == QV_OK;) {
            std::string piece(text.substr(0, split));
            text.remove_prefix(piece.size());
            done = text.empty();
            QVBoolean caching = 0;
            status = document.engine->JsonInput(document.doc, piece.data(), lengthOf(piece),
                                                done && end ? 1 : 0, &caching, nullptr);
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
    const std::string text = R"([{"a":["x","y",true]},{"a":["z",1]},{"a":["v"],"b":[[]]}])";
    HandMap hand;
    hand.table("t", "/root");
    for (const char* path : {"/root/a/a1", "/root/a/a2"}) {
        hand.column("n", VAR_DOUBLE, path);
    }
    const Scan scan(text);
    const Tables tables = tablesOf(&hand.map);
    const std::size_t items = Walk(scan, tables).all(text).size() - tables.size() - 1;
    ASSERT_EQ(items, 7U) << "four texts that are no numbers, and three rows";
    for (const QVStatus status : {QV_EOF, QV_NEEDMORE, QV_NOMEM, QVStatus{JMAP_NOTABLE}, 5}) {
        for (std::size_t last = 1; last <= items; ++last) {
            for (const std::size_t split : {0, 1}) {
                Walk walk(scan, tables);
                walk.stop = [&](std::size_t n) { return n == last ? status : QV_OK; };
                ASSERT_TRUE(walk.open());
                walk.feed(text, split);
                EXPECT_EQ(status, walk.status);
                EXPECT_EQ(last, walk.items.size()) << "nothing is handed out after it";
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
    EXPECT_GT(n, 20U);
    EXPECT_EQ(before, host.leftovers());
}

// A text and what is around the elements of its array.
struct Frame {
    const char* begin;
    const char* end;
};
constexpr Frame kFrames[] = {{"[", "]"}, {R"({"a":[)", "]}"}};

// The counts of all ordinals.
std::vector<uint64_t*> countsOf(JMAPPassh walk, const Tables& tables) {
    std::vector<uint64_t*> counts;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        for (uint64_t column = 0; column < tables[i]->varcount; ++column) {
            uint64_t* const count =
                jmapWalkCount(walk, static_cast<QVStrSize>(i), static_cast<QVStrSize>(column));
            if (count != nullptr) {
                counts.push_back(count);
            }
        }
    }
    return counts;
}

// The items of a text walked in two parts.  `*left`: the first part says that the second cannot be
// walked by itself.
Names itemsOfParts(const Scan& scan, const Tables& tables, const Frame& frame,
                   const Names (&parts)[2], bool* left) {
    Walk first(scan, tables);
    Walk second(scan, tables);
    EXPECT_TRUE(first.open() && second.open());
    first.feed(frame.begin + joined(parts[0]), 0, false);
    EXPECT_QV_OK(jmapEndPart(first.document.doc));
    first.feed(frame.end);
    EXPECT_QV_OK(first.status);
    *left = jmapWalkLeft(first.handle) != 0;
    second.feed(frame.begin, 0, false);
    jmapBeginPart(second.document.doc);
    second.items.clear();  // of what is around the part
    const std::vector<uint64_t*> from = countsOf(first.handle, tables);
    const std::vector<uint64_t*> to = countsOf(second.handle, tables);
    EXPECT_TRUE(std::ranges::all_of(to, [](const uint64_t* count) { return *count == 0; }))
        << "what is around a part is not counted";
    for (std::size_t i = 0; i < from.size(); ++i) {
        *to[i] = *from[i];
    }
    second.feed(joined(parts[1]) + frame.end);
    EXPECT_QV_OK(second.status);
    Names items = first.items;
    items.insert(items.end(), second.items.begin(), second.items.end());
    return items;
}

TEST(RowWalk, GivesInPartsWhatItGivesAtOnce) {
    HandMap hand;
    makeOddMap(&hand, true);
    std::size_t same[2] = {};
    std::size_t left = 0;
    for (unsigned seed = 0; seed < 40; ++seed) {
        const Frame& frame = kFrames[seed % 2];
        const std::size_t cut = 1 + seed % 3;
        Names elements;
        Names parts[2];
        for (unsigned i = 0; i < 4; ++i) {
            const std::string value = RandomDocument(5 * seed + i, {"a", "b", "ab"}).text(2);
            elements.push_back(R"({"a":)" + value + R"(,"b":1,"x":)" + value + "}");
            parts[i < cut ? 0 : 1].push_back(elements.back());
        }
        const std::string text = frame.begin + joined(elements) + frame.end;
        SCOPED_TRACE(text);
        const Scan scan(text);
        for (QVMemPtr map : {scan.automap(), QVMemPtr{&hand.map}}) {
            for (const JMAPTableh table : tablesOf(map)) {
                Walk whole(scan, {table});
                ASSERT_TRUE(whole.open());
                whole.feed(text);
                bool isLeft = false;
                const Names items = itemsOfParts(scan, {table}, frame, parts, &isLeft);
                left += isLeft ? 1 : 0;
                if (!isLeft) {
                    ASSERT_EQ(whole.items, items);
                    same[seed % 2] += items.empty() ? 0 : 1;
                }
            }
        }
    }
    EXPECT_GT(std::min(same[0], same[1]), 100U);
    EXPECT_GT(left, 100U);
}

}  // namespace
}  // namespace jmap::test
