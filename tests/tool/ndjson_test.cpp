// Every NDJSON output is read back by a parser that is not ours, and the CSV output of the same
// table must be what follows from it.
#include "tests/testkit/split.h"
#include "tests/tool/workplace.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <sstream>

namespace jmap::test {
namespace {

// A field of CSV, in quotes when it must be.
std::string quoted(const std::string& text, bool alone) {
    if (text.find_first_of(",\"\r\n") == std::string::npos && text != "NULL") {
        return text.empty() && alone ? "\"\"" : text;
    }
    std::string field = "\"";
    for (const char c : text) {
        field += c == '"' ? "\"\"" : std::string(1, c);
    }
    return field + "\"";
}

constexpr const char* kNull = "NULL";

// Takes a field off the front of `csv`.
std::string takeField(std::string_view& csv) {
    std::string field;
    bool quotes = false;
    std::size_t at = 0;
    for (; at < csv.size() && (quotes || (csv[at] != ',' && csv[at] != '\r')); ++at) {
        quotes = quotes != (csv[at] == '"');
        field += csv[at];
    }
    csv.remove_prefix(at);
    return field;
}

// Takes a line off the front of `csv`, as fields with their quotes.
std::vector<std::string> takeLine(std::string_view& csv) {
    std::vector<std::string> fields = {takeField(csv)};
    while (csv.starts_with(',')) {
        csv.remove_prefix(1);
        fields.push_back(takeField(csv));
    }
    EXPECT_TRUE(csv.starts_with("\r\n"));
    csv.remove_prefix(std::min<std::size_t>(csv.size(), 2));
    return fields;
}

// The field of CSV for a cell of NDJSON.  The digits of numbers are compared elsewhere.
bool equal(const std::string& field, const nlohmann::ordered_json& row, const std::string& column,
           bool alone) {
    const auto cell = row.find(column);
    if (cell == row.end() || cell->is_null()) {
        return field == kNull;
    }
    return cell->is_number() ? std::strtod(field.c_str(), nullptr) == cell->get<double>()
                             : field == quoted(cell->get<std::string>(), alone);
}

// The number of cells compared.
std::size_t compareTable(std::string_view csv, const std::string& ndjson) {
    std::size_t cells = 0;
    std::istringstream lines(ndjson);
    const std::vector<std::string> names = takeLine(csv);
    for (std::string line; std::getline(lines, line);) {
        const auto object = nlohmann::ordered_json::parse(line);
        const std::vector<std::string> fields = takeLine(csv);
        EXPECT_EQ(fields.size(), names.size());
        for (std::size_t i = 0; i < fields.size(); ++i) {
            EXPECT_TRUE(equal(fields[i], object, names[i], names.size() == 1))
                << names[i] << ": " << fields[i] << " " << line;
        }
        cells += fields.size();
    }
    EXPECT_TRUE(csv.empty()) << "more rows than objects";
    return cells;
}

// Converts a document both ways, ALLDATA included, and compares all tables.
std::size_t compareDocument(const std::string& file) {
    const Workplace place;
    const std::string convert = "qvejmap convert -q --alldata '" + file + "' -o ";
    EXPECT_EQ(place.run(convert + "c --null NULL && " + convert + "n --format ndjson").exitCode, 0);
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

// Flat objects whose members keep their kind and order: NDJSON of their table is the document,
// letter for letter.
TEST(ToolNdjson, IsTheDocumentWhereThatIsATable) {
    const auto numbers = split(
        "12345678901234567890|1e400|1.10|-0|1E5|0.1000000000000000055511151231257827|-1e-999|7");
    const auto texts =
        split(R"(| |a  |NULL|null|1.0|x,\"y|\n|日本 |sixteen bytes...|\u0000|exactly seven-teen)");
    std::mt19937 random(20240229);  // NOLINT(cert-msc32-c,cert-msc51-cpp): the same every time
    const auto oneOf = [&](const auto& list) { return list[random() % list.size()]; };
    std::string lines;
    for (int row = 0; row < 2000; ++row) {
        std::string members = "\"id\":" + std::to_string(row);
        for (int column = 0; column < 8; ++column) {
            const unsigned kind = row == 0 ? 2 : random() % 8;  // every column is in the first row
            const std::string value = kind == 1         ? "null"
                                      : column % 2 == 0 ? oneOf(numbers)
                                                        : "\"" + oneOf(texts) + "\"";
            members += kind == 0 ? "" : ",\"c" + std::to_string(column) + "\":" + value;
        }
        lines += "{" + members + "}\n";
    }
    const Workplace place;
    std::string document = lines.substr(0, lines.size() - 1);
    std::replace(document.begin(), document.end(), '\n', ',');
    std::ofstream(place.path() + "/flat.json") << "[" << document << "]";
    const std::string read = "qvejmap read flat.json root --ordinals 0 --format ndjson";
    EXPECT_EQ(place.run(read).out, lines);
    EXPECT_EQ(place
                  .run("qvejmap convert -q flat.json -o out --ordinals 0 --format ndjson; "
                       "cat out/root.ndjson")
                  .out,
              lines);
}

}  // namespace
}  // namespace jmap::test
