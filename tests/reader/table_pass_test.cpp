// All tables in one walk over the record stream.
#include "reader/table_pass.h"

#include "fuzz/kit/table_rows.h"
#include "testkit/hand_map.h"
#include "testkit/random_document.h"

namespace jmap::test {
namespace {

const Names kNames = {"a", "b", "ab"};

// For each table path a table with columns of all kinds on all paths and one without columns; when
// `single` is set, also one for each kind and path.
void makeOddMap(HandMap* hand, bool single) {
    constexpr const char* kPaths[] = {"/root",       "/root/a",    "/root/b",
                                      "/root/ab",    "/root/a/a",  "/root/a/b",
                                      "/root/a/b/b", "/root/none", "/root/a/FAKE"};
    const auto addColumns = [&](const char* path, int kind) {
        constexpr VARTYPE kTypes[] = {VAR_ORDINAL, VAR_DOUBLE, VAR_CHAR};
        const VARTYPE type = kTypes[kind % 3];
        for (const char* name : {"x", "retained", "not"}) {
            VARINFO& column = hand->column(name, type, path, type == VAR_CHAR ? 5 : 8);
            column.retain = *name == 'r';
            column.noretain = *name == 'n';
            if (kind >= 3) {
                HandMap::informat(column);
            }
        }
    };
    for (const char* tablePath : {"/root", "/root/a", "/root/a/b", "/root/none", "", "null"}) {
        tablePath = *tablePath == 'n' ? nullptr : tablePath;
        hand->table("no columns", tablePath);
        hand->table("all", tablePath);
        for (const bool all : {true, false}) {
            for (int i = 0; i < (all || single ? 6 * static_cast<int>(std::size(kPaths)) : 0);
                 ++i) {
                if (!all) {
                    hand->table("one", tablePath);
                }
                addColumns(kPaths[i / 6], i % 6);
            }
        }
    }
}

TEST(TablePass, GivesTheRowsOfReadForEveryKindOfTable) {
    HandMap hand;
    makeOddMap(&hand, true);
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const Scan scan(RandomDocument(seed, kNames).text(6));
        fuzz::requireSameRows(scan.doc(), fuzz::tablesOf(scan.doc(), &hand.map));
    }
}

TEST(TablePass, CopiesWhatOutlivesABlock) {
    HandMap hand;
    makeOddMap(&hand, false);
    size_t blocks = 0;
    for (unsigned seed = 0; seed < 4; ++seed) {
        for (const bool compress : {false, true}) {
            SCOPED_TRACE(seed);
            FakeHost host;
            host.setAvailable(0);
            const Scan scan(host, RandomDocument(seed, kNames, 30'000).text(200),
                            {.compress = compress, .cacheFile = scratchFile("c"), .memLeave = 1});
            fuzz::requireSameRows(scan.doc(), fuzz::tablesOf(scan.doc(), &hand.map));
            blocks += scan.blocks().size();
        }
    }
    EXPECT_GT(blocks, 30U);
}

std::string textOf(const JMAPPassCell& cell) {
    return cell.kind == JMAP_CELL_MISSING ? "~"
           : cell.kind == JMAP_CELL_COUNT
               ? std::to_string(cell.count)
               : (cell.strayed ? "*" : "") + std::string(view(cell.text, cell.textLen));
}

// The rows of a map in one pass: the table's name and its cells, "*" before what strayed.
std::string rowsOfPass(const Scan& scan, QVMemPtr map, uint64_t flags = 0) {
    std::vector<JMAPTableh> tables;
    for (JMAPTableh table = nullptr; jmapNextTable(map, &table) == QV_OK;) {
        tables.push_back(table);
    }
    JMAPPassh pass = nullptr;
    EXPECT_QV_OK(jmapPassOpen(scan.doc(), tables.data(), static_cast<QVStrSize>(tables.size()),
                              flags, &pass));
    std::string text;
    std::map<std::pair<QVStrSize, QVStrSize>, uint64_t> strayed;
    for (JMAPPassItem item = {}; jmapPassNext(pass, &item) == QV_OK;) {
        const DSINFO* table = tables[static_cast<size_t>(item.table)];
        text += view(table->name, table->nameLen);
        for (QVStrSize i = 0; i < item.cellCount; ++i) {
            text += (i == 0 ? " " : "|") + textOf(item.cells[i]);
            strayed[{item.table, i}] += item.cells[i].strayed;
        }
        text += "\n";
    }
    for (const auto& [place, count] : strayed) {
        JMAPPassColumn column = {};
        jmapPassColumn(pass, place.first, place.second, &column);
        EXPECT_EQ(count, column.strayed) << place.first << "." << place.second;
    }
    EXPECT_QV_OK(jmapPassClose(pass));
    return text;
}

TEST(TablePass, TellsValuesThatCameBeforeTheirRow) {
    constexpr struct {
        const char* name;
        const char* document;
        const char* rows;
    } kCases[] = {
        {"an array that wrote no marker, of another parent",
         R"({"o":[{"id":1,"m":["S",{"t":["x","y"]}]},{"id":2,"m":[{"t":["z"]}]}]})",
         "o_m 1|1|1|S\no_m 1|1|2|~\no 1|1|1\nm_t 1|2|3|1|*x|*y|z\no 1|2|2\n"},
        {"a row without a value of its own", R"({"a":[1,{"b":[2,3]},{"b":[9]}]})",
         "a 1|1|1\na_b 1|3|1|*2|*3|9\n"},
        {"and not the row of an earlier one", R"({"a":[{"b":[9]},1,{"b":[2,3]},{"b":[7]}]})",
         "a_b 1|1|1|9|~|~\na 1|2|1\na_b 1|4|2|7|*2|*3\n"},
        {"before the first object", R"(["x",{"a":1}])", "root 1|*x|1\n"},
        {"after an object", R"([{"a":1},"x",{"a":2}])", "root 1|1|x\nroot 2|2|~\n"},
        {"one row only", R"(["x",{},{"element1":"y"}])", "root 1|*x\nroot 2|y\n"},
        {"in no row", R"({"a":[1,{"b":[2]}]})", "a 1|1|1\n"},
        {"overwritten in the row", R"({"a":[1,{"b":[2]},{"b":{"b2":3,"c":4}}]})",
         "a 1|1|1\na_b 1|3|1|3|4\n"},
        {"overwritten before the row", R"([1,{"b":[2]},3,{"c":4,"b":[5,6,[7]]},{"b":[8]}])",
         "root 1|3|~\nroot 2|~|4\nb 3|1|*5|*6|*7|8\n"},
        {"the marker of the array comes later", R"([{"c":0},1,{"b":[2,[3],4]}])",
         "root 1|0|1\nb 2|1|*2|*3|4\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.name);
        const Scan scan(c.document);
        EXPECT_EQ(c.rows, rowsOfPass(scan, scan.automap()));
    }
}

TEST(TablePass, KeepsNoStrayInTheNextRow) {
    const Scan scan(R"(["x",{"a":1},{"a":2}])");
    EXPECT_EQ("root 1|*x|1\nroot 2|x|2\n", rowsOfPass(scan, scan.automap(), QVEJMAP_RETAIN));
}

TEST(TablePass, ColumnsOfOtherPlacesTakeTheirValuesAtAnyTime) {
    HandMap hand;
    hand.table("t", "/root/o/m/t");
    hand.column("id", VAR_DOUBLE, "/root/o/id");
    hand.column("t1", VAR_CHAR, "/root/o/m/t/t1");
    hand.column("t2", VAR_CHAR, "/root/o/m/t/t2");
    HandMap::informat(hand.column("n", VAR_ORDINAL, "/root/o/m/t/t2"));
    hand.table("o", "/root/o");
    hand.column("t2", VAR_CHAR, "/root/o/m/t/t2");
    const Scan scan(R"({"o":[{"id":1,"m":["S",{"t":["x"]}]},{"id":2,"m":[{"t":["z"]}]}]})");
    EXPECT_EQ("o x\nt 2|z|*x|~\n", rowsOfPass(scan, &hand.map));
}

}  // namespace
}  // namespace jmap::test
