// Every NDJSON output is read back by a parser that is not ours, and the CSV output of the same
// table must be what follows from it.
#include "tests/tool/workplace.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <charconv>
#include <sstream>

namespace jmap::test {
namespace {

// A field of CSV, in quotes when it must be.
std::string quoted(const std::string& text, bool alone) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        return text.empty() && alone ? "\"\"" : text;
    }
    std::string field = "\"";
    for (const char c : text) {
        field += c == '"' ? "\"\"" : std::string(1, c);
    }
    return field + "\"";
}

// Takes a cell off the front of `csv`; a number may be written in any way.
bool takeCell(std::string_view& csv, const nlohmann::json& cell, bool alone) {
    if (cell.is_number()) {
        double number = 0;
        const char* end = std::from_chars(csv.data(), csv.data() + csv.size(), number).ptr;
        csv.remove_prefix(static_cast<std::size_t>(end - csv.data()));
        return cell.get<double>() == number;
    }
    const std::string field = quoted(cell.is_null() ? "" : cell.get<std::string>(), alone);
    const bool same = csv.starts_with(field);
    csv.remove_prefix(same ? field.size() : 0);
    return same;
}

// Takes a line off the front of `csv` and returns its number of cells.
std::size_t takeRow(std::string_view& csv, const nlohmann::ordered_json& row) {
    std::string_view separator;
    for (const auto& cell : row) {
        EXPECT_TRUE(csv.starts_with(separator));
        csv.remove_prefix(separator.size());
        EXPECT_TRUE(takeCell(csv, cell, row.size() == 1)) << cell << csv.substr(0, 100);
        separator = ",";
    }
    EXPECT_TRUE(csv.starts_with("\r\n"));
    csv.remove_prefix(std::min<std::size_t>(csv.size(), 2));
    return row.size();
}

// The number of cells compared.
std::size_t compareTable(std::string_view csv, const std::string& ndjson) {
    csv.remove_prefix(ndjson.empty() ? csv.size() : 0);
    std::size_t cells = 0;
    std::istringstream lines(ndjson);
    for (std::string line; std::getline(lines, line);) {
        const auto object = nlohmann::ordered_json::parse(line);
        if (cells == 0) {
            auto header = nlohmann::ordered_json::array();
            for (const auto& member : object.items()) {
                header.push_back(member.key());
            }
            cells += takeRow(csv, header);
        }
        cells += takeRow(csv, object);
    }
    EXPECT_TRUE(csv.empty()) << "more rows than objects";
    return cells;
}

// Converts a document both ways, ALLDATA included, and compares all tables.
std::size_t compareDocument(const std::string& file) {
    const Workplace place;
    const std::string convert = "qvejmap convert -q --alldata '" + file + "' -o ";
    EXPECT_EQ(place.run(convert + "c; " + convert + "n --format ndjson").exitCode, 0);
    EXPECT_EQ(place.run("ls c | wc -l").out, place.run("ls n | wc -l").out);
    std::size_t cells = 0;
    for (const auto& entry : std::filesystem::directory_iterator(place.path() + "/c")) {
        SCOPED_TRACE(entry.path());
        cells +=
            compareTable(readFile(entry.path()),
                         readFile(place.path() + "/n/" + entry.path().stem().string() + ".ndjson"));
    }
    return cells;
}

TEST(ToolNdjson, ReadsBackAndEqualsCsv) {
    const Workplace place;
    const std::string nasty = place.path() + "/nasty.json";
    std::ofstream(nasty)
        << R"({"q\"\\\u0001":"\u0000\u001f\u007f\u0085 \"\\/,\r\n","日":[{"v":0.1,"w":"🂡"},)"
        << R"({"v":-0,"w":" x"},{"v":1e-320},{"v":9007199254740993}],"e":{},"f":[[],[1,[2]]]})";
    EXPECT_GT(compareDocument("orders.json"), 100U);
    EXPECT_GT(compareDocument(nasty), 60U);
}

TEST(ToolNdjson, ReadsBackForRealDocuments) {
    const std::string data = JMAP_SOURCE_DIR "/../shared/data/";
    if (!std::filesystem::exists(data)) {
        GTEST_SKIP() << data << " is not there";
    }
    for (const char* name : {"github_events.json", "twitter.json", "instruments.json",
                             "vega_budget.json", "tree-pretty.json"}) {
        EXPECT_GT(compareDocument(data + name), 1000U) << name;
    }
}

}  // namespace
}  // namespace jmap::test
