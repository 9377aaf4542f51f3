// Columns of ancestors in the rows of a pass.
#include "client/carried_columns.h"

#include "client/account.h"
#include "client/pass_pipe.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

using Lines = std::vector<std::string>;

// A column is "PATH", "PATH TYPE" or "PATH TYPE, further members of the map".
std::string mapOf(const std::vector<std::pair<std::string, Lines>>& tables) {
    std::string map;
    for (const auto& [path, columns] : tables) {
        map += (map.empty() ? "" : ",") + (R"({"DSNAME":"t","TABLEPATH":")" + path);
        map += R"(","VARIABLES":[)";
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const std::size_t blank = columns[i].find(' ');
            const bool typed = blank != std::string::npos;
            map += (i == 0 ? "{" : ",{") + (R"("PATH":")" + columns[i].substr(0, blank));
            map += R"(","TYPE":)" + (typed ? columns[i].substr(blank + 1) : R"("CHARACTER")") + "}";
        }
        map += "]}";
    }
    return R"({"DATASETS":[)" + map + "]}";
}

std::string shown(const qvej::Row& row) {
    std::string line;
    for (std::size_t i = 0; i < row.columns().size(); ++i) {
        const qvej::Cell cell = row.cell(i);
        line += i == 0 ? "" : "|";
        line += cell.kind == qvej::Cell::MISSING ? "~"
                : cell.kind == qvej::Cell::NUL   ? "null"
                : cell.kind == qvej::Cell::COUNT ? std::to_string(cell.count)
                                                 : std::string(cell.text);
    }
    return line;
}

// A document with a map.
struct Scan {
    Scan(std::string_view text, const std::string& map, const qvej::DocumentOptions& options = {})
        : document(engine, options) {
        document.feed(text);
        document.finish();
        document.useMap(map);
        for (const qvej::Table& table : document.tables()) {
            tables.push_back(&table);
        }
    }
    qvej::Engine engine;
    qvej::Document document;
    std::vector<const qvej::Table*> tables;
};

// The rows of all tables, those of further ones with their number in front.  Values that a column
// cannot take come before the row that would first show them.
Lines carriedRows(const Scan& scan, unsigned threads) {
    Lines lines;
    std::vector<std::unique_ptr<qvej::PassRow>> rows;
    for (const qvej::Table* table : scan.tables) {
        rows.push_back(std::make_unique<qvej::PassRow>(
            scan.document, *table, [&](const qvej::Row& /*row*/, const qvej::Rejected& r) {
                lines.push_back("! " + std::to_string(r.row) + " " + std::string(r.text) + ": " +
                                std::string(r.reason));
            }));
    }
    qvej::TablePass pass(scan.document, scan.tables, false, true);
    qvej::runPass(pass, threads, [&](std::span<const qvej::PassItem> items) {
        for (const qvej::PassItem& item : items) {
            if (rows[item.table]->take(item)) {
                const std::string number = std::to_string(item.table) + " ";
                lines.push_back((item.table == 0 ? "" : number) + shown(*rows[item.table]));
            }
        }
    });
    return lines;
}

TEST(CarriedColumns, HaveTheValueOfTheRowsOwnAncestor) {
    const struct {
        const char* name;
        const char* json;
        std::vector<std::pair<std::string, Lines>> tables;
        Lines rows;
    } kCases[] = {
        {"before and after the rows, and missing",
         R"({"o":[{"id":1,"m":[{"v":1},{"v":2}],"e":true},{"id":2,"m":[{"v":3}]}],"all":"x"})",
         {{"/root/o/m", {"/root/o/id", "/root/o/m/v", "/root/o/e", "/root/all"}}},
         {"1|1|true|x", "1|2|true|x", "2|3|~|x"}},
        {"the last of several",
         R"([{"id":1,"m":[{"v":1}],"id":2,"c":[{"n":"p"},{"n":"q"},{}]}])",
         {{"/root/m", {"/root/id", "/root/c/n", "/root/m/v"}}},
         {"2|q|1"}},
        {"null is a value",
         R"([{"id":1,"m":[{"v":1}],"id":null},{"m":[{"v":2}]}])",
         {{"/root/m", {"/root/id", "/root/m/v"}}},
         {"null|1", "~|2"}},
        {"RETAIN changes nothing",
         R"([{"id":1,"m":[{"v":1}]},{"m":[{"v":2}]}])",
         {{"/root/m", {R"(/root/id "NUMERIC","OPTIONS":["RETAIN"])", "/root/m/v"}}},
         {"1|1", "~|2"}},
        {"the column of two tables, one of them further down",
         R"([{"m":[{"v":1,"w":[{"x":5},{"x":6}]}],"id":1},{"m":[{"v":2,"w":[{"x":7}]}],"id":2}])",
         {{"/root/m", {"/root/id", "/root/m/v"}}, {"/root/m/w", {"/root/id", "/root/m/w/x"}}},
         {"1 1|5", "1 1|6", "1|1", "1 2|7", "2|2"}},
        {"a row for each instance, though most have no value",
         R"([{"m":[{"v":1}]},{"m":[{"v":2}],"id":2},{"m":[{"v":3}]},{"m":[{"v":4}]}])",
         {{"/root/m", {"/root/id", "/root/m/v"}}},
         {"~|1", "2|2", "~|3", "~|4"}},
        {"ancestors of one depth in turn",
         R"([{"a":{"m":[{"v":1}]},"b":{"n":[{"w":2}],"y":"Y"}},{"b":{"n":[{"w":3}]},"a":{"x":"X"}},)"
         R"({"a":{"m":[{"v":4}],"x":"Z"}}])",
         {{"/root/a/m", {"/root/a/x", "/root/a/m/v"}}, {"/root/b/n", {"/root/b/y", "/root/b/n/w"}}},
         {"~|1", "1 Y|2", "1 ~|3", "Z|4"}},
        {"arrays in arrays, where inner arrays count too",
         R"({"o":[[{"m":[[{"v":1}],[{"v":2}]],"id":1}],[{"id":2},{"m":[[{"v":3}]],"id":3}]]})",
         {{"/root/o/m", {"/root/o/id", "/root/o/m/v"}}},
         {"1|1", "1|2", "3|3"}},
        {"values of a parent make no rows",
         R"([{"id":1,"m":[{},{"v":1}],"e":1,"z":{}},{"id":2,"m":[],"e":2},{"id":3,"m":{},"e":3}])",
         {{"/root/m", {"/root/m \"ORDINAL\"", "/root/id", "/root/e"}}},
         {"1|1|1", "2|1|1", "3|2|2", "4|3|3"}},
        {"a value that strays into another parent is carried nowhere",
         R"({"o":[{"m":["s",{"t":["x",{"v":1}]}]},{"m":["s",{"t":["y"]},{"t":[{"v":2}]}]}]})",
         {{"/root/o/m/t/u", {"/root/o/m/t/t1"}}, {"/root/o/m/t", {"/root/o/m/t/v"}}},
         {"1 1", "1 2"}},
        {"a scalar where the ancestor is an array elsewhere",
         R"([{"o":5},{"o":[{"m":[{"v":1}]}]},{"o":[{"":6,"m":[{"v":2}]}]}])",
         {{"/root/o/m", {"/root/o", "/root/o/m/v"}}},
         {"~|1", "6|2"}},
        {"a number that is none, told once, in the first row",
         R"([{"id":"ten","m":[{"v":1},{"v":"?"}]},{"id":"11","m":[{"v":3}]}])",
         {{"/root/m", {"/root/id \"NUMERIC\"", "/root/m/v \"NUMERIC\""}}},
         {"! 1 ten: not a number", "null|1", "! 2 ?: not a number", "null|null", "11|3"}},
        {"conversions, exact digits, lengths",
         R"([{"m":[{"v":1},{"v":2}],"n":12345678901234567890.10,"d":"1,234","f":2,"s":"abcdef"},)"
         R"({"m":[{"v":3}],"d":"1;2"}])",
         {{"/root/m",
           {"/root/n \"NUMERIC\"",
            R"(/root/d "NUMERIC","INFORMAT":["comma"],"FORMAT":["fixed",0,1])",
            R"(/root/f "NUMERIC","FORMAT":["fixed",0,2])", R"(/root/s "CHARACTER","LENGTH":3)",
            "/root/m/v"}}},
         {"! 1 abcdef: cut to 3 bytes", "12345678901234567890.10|1234.0|2.00|abc|1",
          "12345678901234567890.10|1234.0|2.00|abc|2", "! 3 1;2: not a number with commas",
          "~|null|~|~|3"}},
    };
    for (const auto& c : kCases) {
        for (const bool compress : {false, true}) {
            for (const unsigned threads : {1U, 2U}) {
                SCOPED_TRACE(std::string(c.name) + (compress ? ", compressed" : "") + ", threads " +
                             std::to_string(threads));
                qvej::DocumentOptions options;
                options.compress = compress;
                const Scan scan(c.json, mapOf(c.tables), options);
                EXPECT_EQ(carriedRows(scan, threads), c.rows);
            }
        }
    }
}

// The account counts a value once, however many rows show it.
TEST(CarriedColumns, AreAccountedByTheirValues) {
    const Scan scan(R"([{"id":1,"m":[{"v":1},{"v":2}]},{"id":2},{"id":3,"id":4},)"
                    R"({"id":"x","m":[{"v":3},{"v":4}]}])",
                    mapOf({{"/root/m", {"/root/id \"NUMERIC\"", "/root/m/v"}}}));
    const std::vector<qvej::PathAccount> accounts = qvej::accountOf(scan.document, false, true);
    ASSERT_EQ(accounts.size(), 2U);
    const qvej::PathAccount& id = accounts[0];
    EXPECT_TRUE(id.meets());
    const auto lost = [&](qvej::Loss loss) { return id.lost[static_cast<std::size_t>(loss)]; };
    EXPECT_EQ(id.values, 5U);
    EXPECT_EQ(id.cells, 1U);
    EXPECT_EQ(lost(qvej::Loss::REJECTED).first, 5U);
    EXPECT_EQ(lost(qvej::Loss::OVERWRITTEN).first, 3U);
    EXPECT_EQ(lost(qvej::Loss::NO_ROW).count, 2U);
}

TEST(CarriedColumns, AFailureOfThePassAheadStays) {
    std::string text = R"([{"m":[{"v":1}]},{"a":[)";
    for (int i = 0; i < 60000; ++i) {
        text += "{\"x\":1},";
    }
    text += R"({}]},{"id":1,"m":[{"v":2}]}])";
    qvej::DocumentOptions options;
    options.cacheFile = testing::TempDir() + "carried_columns_test.cache";
    options.keepFree = UINT64_MAX;  // all blocks but the first go to the file
    std::filesystem::remove(options.cacheFile);
    const Scan scan(text, mapOf({{"/root/m", {"/root/id", "/root/m/v"}}}), options);
    std::filesystem::resize_file(options.cacheFile, 0);
    qvej::TablePass pass(scan.document, scan.tables, false, true);
    qvej::PassItem item;
    EXPECT_THROW(pass.next(item), qvej::Error);
    EXPECT_THROW(pass.next(item), qvej::Error);
    std::filesystem::remove(options.cacheFile);
}

}  // namespace
