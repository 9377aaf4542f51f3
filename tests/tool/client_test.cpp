// The C++ face: documents, tables, cells, and how failures come.
#include "client/cursor.h"
#include "client/error.h"
#include "client/text.h"
#include "qvportable.h"
#include "tests/tool/workplace.h"

#include <gtest/gtest.h>

namespace {

using qvej::Cell;

// The cells of the row behind "|", "~" for missing.
std::string rowOf(const qvej::Cursor& cursor) {
    std::string text;
    for (std::size_t i = 0; i < cursor.columns().size(); ++i) {
        const Cell cell = cursor.cell(i);
        text += "|";
        text += cell.kind == Cell::MISSING  ? "~"
                : cell.kind == Cell::NUMBER ? std::to_string(static_cast<int>(cell.number))
                                            : std::string(cell.text);
    }
    return text;
}

TEST(Client, GivesTablesColumnsAndPaths) {
    qvej::Engine engine;
    qvej::Document document(engine);
    document.feed(R"({"o":[{"id":10,"who":{"name":"Ann "}},{"id":)");
    document.feed(R"(null,"who":{"name":"Bo"}}]})");
    document.finish();
    ASSERT_EQ(document.tables().size(), 2U);
    std::string columns;
    for (const qvej::Column& c : document.tables()[1].columns) {
        columns += c.name + " " + qvej::withSlashes(c.path) + " " +
                   std::to_string(static_cast<int>(c.type)) + " " + std::to_string(c.length) + "\n";
    }
    EXPECT_EQ(columns,
              "ordinal_root /root 0 8\nordinal_o /root/o 0 8\nordinal_who /root/o/who 0 8\n"
              "name /root/o/who/name 2 4\n");
    std::string paths;
    for (const qvej::PathStatistics& path : document.pathStatistics()) {
        paths += qvej::withSlashes(path.path) + " " + std::to_string(path.count) + " " +
                 std::to_string(path.longest) + "\n";
    }
    EXPECT_EQ(paths, "/root/o/id 2 4\n/root/o/who/name 2 4\n");
    EXPECT_EQ(document.find("O_WHO"), &document.tables()[1]);
    EXPECT_EQ(document.find("ALLDATA"), &document.alldata());
}

// Tables, columns and counts of a document, or why there are none.
std::string shapeOf(qvej::Engine& engine, const std::string& text, uint64_t failing) {
    std::string shape;
    try {
        qvej::Document document(engine);
        qvPortableFailAllocation(engine.host(), failing, 0);
        document.feed(text);
        document.finish();
        qvPortableFailAllocation(engine.host(), 0, 0);
        for (const qvej::Table& table : document.tables()) {
            shape += table.name + ":";
            for (const qvej::Column& column : table.columns) {
                shape += " " + column.name;
            }
            shape += "\n";
        }
    } catch (const qvej::Error& error) {
        shape = error.what();
    }
    qvPortableFailAllocation(engine.host(), 0, 0);
    return shape;
}

// Each request for memory fails in turn: what is missing has been told.
TEST(Client, ADocumentThatFinishesIsWhole) {
    std::string text = R"({"x\u0002y":{"p":1,"q":1},"x":{"y":{"q":2,"r":[{"s":3}]}},"wide":{)";
    for (int i = 0; i < 40; ++i) {
        text += (i == 0 ? "\"c" : ",\"c") + std::to_string(i) + "\":" + std::to_string(i);
    }
    text += R"(},"rows":[{"c1":1,"sub":{"v":true}},{"c2":"x"}]})";
    qvej::Engine engine;
    const std::string whole = shapeOf(engine, text, 0);
    std::map<std::string, int> failures;
    uint64_t failing = 1;
    for (int wholeInTurn = 0; wholeInTurn < 40; ++failing) {  // none is left to fail
        const std::string shape = shapeOf(engine, text, failing);
        wholeInTurn = shape == whole ? wholeInTurn + 1 : 0;
        failures[shape] += 1;
    }
    EXPECT_GT(failures[whole], 40);
    EXPECT_GT(failures["memory could not be obtained"], 10);
    EXPECT_GT(failures["memory ran out while the map was made: 1 table is missing"], 3);
    EXPECT_GT(failures["memory ran out while paths were looked up"], 1);
    EXPECT_EQ(failures.size(), 5U) << "besides: some number of tables is missing";
}

TEST(Client, CursorsStandBesideEachOtherEndAndRewind) {
    qvej::Engine engine;
    qvej::Document document(engine);
    document.feed(R"({"a":[{"x":7},{"x":null}],"b":[{"y":"v "},{"y":4}]})");
    document.finish();
    qvej::Cursor a(document, document.tables()[0]);
    qvej::Cursor b(document, document.tables()[1]);
    ASSERT_TRUE(a.next() && b.next() && a.next());
    EXPECT_EQ(rowOf(a), "|1|2|~");
    EXPECT_EQ(rowOf(b), "|1|1|v");
    EXPECT_FALSE(a.next());
    EXPECT_FALSE(a.next());
    a.reset();
    ASSERT_TRUE(a.next());
    EXPECT_EQ(rowOf(a), "|1|1|7");
}

// The failure of a document that is fed byte by byte, as "STATUS line:column".
std::string failureOf(qvej::Engine& engine, std::string_view text,
                      const qvej::DocumentOptions& options = {}) {
    try {
        qvej::Document document(engine, options);
        for (; !text.empty(); text.remove_prefix(1)) {
            document.feed(text.substr(0, 1));
        }
        document.finish();
    } catch (const qvej::Error& error) {
        return std::string(qvStatusName(error.status())) + " " + std::to_string(error.line()) +
               ":" + std::to_string(error.column());
    }
    return "no failure";
}

TEST(Client, FailuresCarryAStatusAndAPlace) {
    qvej::Engine engine({.maxDepth = 2});
    const struct {
        const char* text;
        const char* failure;
    } cases[] = {
        {"{}", "no failure"},
        {"[1,\n 01]", "QV_JSON_LEADING_ZERO 2:3"},
        {"[[[1]]]", "QV_JSON_DEPTH 1:3"},
        {"{\"a\":[1", "JMAP_INCOMPLETE 0:0"},
        {" \r\n\t 42 ", "JMAP_INCOMPLETE 2:3"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(failureOf(engine, c.text), c.failure) << c.text;
    }
    EXPECT_EQ(failureOf(engine, "{}", {.alldataName = std::string(40, 'x')}), "no failure");
    EXPECT_EQ(failureOf(engine, "{}", {.alldataName = std::string(41, 'x')}), "QV_BADPARMS 0:0");
    EXPECT_EQ(failureOf(engine, "{}", {.cacheFile = "\xED\xA0\x80"}), "QV_UNMAPPABLE 0:0");
}

TEST(Client, RecordsThatCannotBeReadBackAreAFailure) {
    const jmap::test::Workplace place;
    qvej::Engine engine({.memoryBudget = 1});
    qvej::Document document(engine, {.cacheFile = place.path() + "/cache", .keepFree = 1});
    document.feed("[");
    for (int i = 0; i < 50000; ++i) {
        document.feed(R"({"x":"some text"},)");
    }
    document.feed("{}]");
    document.finish();
    std::filesystem::resize_file(place.path() + "/cache", 0);
    qvej::Cursor cursor(document, document.tables()[0]);
    EXPECT_THROW(while (cursor.next()){}, qvej::Error);
    qvej::RecordCursor records(document);
    qvej::Record record = {};
    EXPECT_THROW(while (records.next(record)){}, qvej::Error);
}

TEST(Client, CutsCellsAtWholeCharacters) {
    const struct {
        const char* cell;
        const char* utf8;
        const char* bytes;  // in a single-byte encoding
    } cases[] = {
        {"                                 ", "", ""},
        {" a b ", " a b", " a b"},
        {"x \xE6\x97", "x", "x \xE6\x97"},
        {"x\xE6\x97\xA5", "x日", "x日"},
        {"\xF0\x9F\x82", "", "\xF0\x9F\x82"},
        {"\x97\xA5", "\x97\xA5", "\x97\xA5"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(qvej::withoutPadding(c.cell, true), c.utf8) << c.cell;
        EXPECT_EQ(qvej::withoutPadding(c.cell, false), c.bytes) << c.cell;
    }
}

}  // namespace
