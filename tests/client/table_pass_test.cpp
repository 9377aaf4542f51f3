// Cells of a pass over all tables, against those of a cursor on each.
#include "client/table_pass.h"

#include "client/cursor.h"
#include "client/text.h"
#include "tests/client/read_document.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using jmap::test::ReadDocument;
using qvej::Cell;
using Lines = std::vector<std::string>;

// What a Cursor has for a cell of a pass: numbers as doubles, no blanks at the end, null as
// nothing.
Cell asCursor(const Cell& cell, bool numeric) {
    switch (cell.kind) {
        case Cell::BOOLEAN:
        case Cell::COUNT:
            return {Cell::NUMBER, static_cast<double>(cell.count)};
        case Cell::DIGITS:
            return {Cell::NUMBER, std::strtod(std::string(cell.text).c_str(), nullptr)};
        case Cell::TEXT:
            return {Cell::TEXT, 0, qvej::withoutPadding(cell.text, false)};
        case Cell::NUMBER:
            return cell;
        default:
            return {numeric ? Cell::MISSING : Cell::TEXT};
    }
}

std::string shown(const qvej::Row& row) {
    std::string line;
    for (std::size_t i = 0; i < row.columns().size(); ++i) {
        const bool numeric = row.columns()[i].type != qvej::ColumnType::CHARACTER;
        const Cell cell = asCursor(row.cell(i), numeric);
        line += "|" + std::to_string(cell.kind) + ":" + std::string(cell.text);
        line += cell.kind == Cell::NUMBER ? std::to_string(cell.number) : "";
    }
    return line;
}

qvej::RejectHandler into(Lines& lines) {
    return [&lines](const qvej::Row& row, const qvej::Rejected& r) {
        if (!r.cut) {  // a Cursor does not see what is cut
            lines.push_back(std::to_string(r.row) + " " + row.columns()[r.column].name + " " +
                            std::string(r.text) + " " + std::string(r.reason) + " " +
                            std::to_string(asCursor(row.cell(0), true).number));
        }
    };
}

Lines byCursor(const qvej::Document& document, const qvej::Table& table, bool retain) {
    Lines lines;
    qvej::Cursor cursor(document, table, retain, into(lines));
    while (cursor.next()) {
        lines.push_back(shown(cursor));
    }
    return lines;
}

std::vector<Lines> byPass(const ReadDocument& read, bool retain) {
    const std::vector<const qvej::Table*> tables = read.tables();
    std::vector<Lines> lines(tables.size());
    std::vector<std::unique_ptr<qvej::PassRow>> rows;
    for (std::size_t i = 0; i < tables.size(); ++i) {
        rows.push_back(std::make_unique<qvej::PassRow>(read.document, *tables[i], into(lines[i])));
    }
    qvej::TablePass pass(read.document, tables, retain);
    EXPECT_TRUE(pass.textsStay());
    for (qvej::PassItem item; pass.next(item);) {
        if (rows[item.table]->take(item)) {
            lines[item.table].push_back(shown(*rows[item.table]));
        }
    }
    return lines;
}

TEST(TablePass, GivesTheCellsAndRejectsOfCursors) {
    constexpr const char* kColumns = R"(
        {"NAME":"row","PATH":"/root"},
        {"NAME":"p","PATH":"/root/p","INFORMAT":["comma"],"FORMAT":["fixed",0,1]},{"NAME":"x","TYPE":"NUMERIC","PATH":"/root/x"},
        {"NAME":"f","TYPE":"NUMERIC","PATH":"/root/x","FORMAT":["fixed",0,2]},
        {"NAME":"xk","TYPE":"NUMERIC","PATH":"/root/x","OPTIONS":["RETAIN"]},
        {"NAME":"n","TYPE":"NUMERIC","PATH":"/root/n","INFORMAT":["comma"]},
        {"NAME":"nk","TYPE":"NUMERIC","PATH":"/root/n","INFORMAT":["comma"],"OPTIONS":["RETAIN"]},
        {"NAME":"s","TYPE":"CHARACTER","PATH":"/root/x","LENGTH":3},
        {"NAME":"u","TYPE":"CHARACTER","PATH":"/root/s","INFORMAT":["upper"]},
        {"NAME":"sk","TYPE":"CHARACTER","PATH":"/root/s","LENGTH":4,"OPTIONS":["RETAIN"]})";
    const std::string map =
        std::string(R"({"DATASETS":[{"DSNAME":"t","TABLEPATH":"/root","VARIABLES":[)") + kColumns +
        R"(]},{"DSNAME":"p","TABLEPATH":"/root/p","VARIABLES":[)" + kColumns + "]}]}";
    const std::string document =
        R"([{"x":"1","n":"1,234","s":"h\u00e9\u00e9\u00e9 ","p":{}},{"p":{},"x":true},
            {"x":"bad","n":"no","s":null,"x":"bad2","x":3},{},{"s":"","n":"","x":null},
             {"x":"last bad","n":"5"},{"p":[{},{"q":1}],"n":null,"p":"7"},{"x":"null","n":"7 8"},
             {"x":-1e999,"s":"x  ","b":false}, {"y":1,"b":null},{"b":true,"c":true},{"c":0}])";
    const qvej::Engine names;
    for (const char* encoding : {"utf-8", "iso-8859-1"}) {
        for (const bool mapped : {false, true}) {
            ReadDocument read(document, {.encoding = names.encodingId(encoding)});
            if (mapped) {
                read.document.useMap(map);
            }
            for (const bool retain : {false, true}) {
                const std::vector<Lines> lines = byPass(read, retain);
                for (std::size_t i = 0; i < lines.size(); ++i) {
                    const qvej::Table& table = *read.tables()[i];
                    SCOPED_TRACE(encoding + table.name);
                    EXPECT_EQ(lines[i], byCursor(read.document, table, retain));
                    EXPECT_GT(lines[i].size(), 1U);
                }
            }
        }
    }
}

}  // namespace
