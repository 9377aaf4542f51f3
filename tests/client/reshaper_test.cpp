// What only the C++ face shows of a shape: places, pieces, texts that are cut, failures.
#include "client/shape/reshaper.h"

#include "client/document.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

qvej::Shape shapeOf(const std::vector<std::string>& rules) {
    qvej::Shape shape;
    for (const std::string& rule : rules) {
        shape.addRule(rule);
    }
    return shape;
}

// The records as text, of a document that comes in pieces of `piece` bytes.
std::string recordsOf(std::string_view text, const std::vector<std::string>& rules,
                      std::size_t piece) {
    qvej::Engine engine;
    qvej::DocumentOptions options;
    options.shape = shapeOf(rules);
    qvej::Document document(engine, options);
    for (std::size_t at = 0; at < text.size(); at += piece) {
        document.feed(text.substr(at, piece));
    }
    document.finish();
    qvej::RecordCursor cursor(document);
    std::string records;
    for (qvej::Record record; cursor.next(record);) {
        records += std::string(record.path) + "=" + std::string(record.value) + "\n";
    }
    return records;
}

TEST(Reshaper, TakesTheTextInPiecesOfAnySize) {
    const std::string text =
        R"({"data":{"one":{"a":[1,{"b":"c\n"}],"e":{}},"two":2.50,"three":[[true],null]},"m":{"x":"y"}})";
    const std::vector<std::string> rules = {"rows /root/data as name except two", "text /root/**/a",
                                            "inline /root/m", "empty drop"};
    const std::string whole = recordsOf(text, rules, text.size());
    EXPECT_NE(whole.find(R"([1,{"b":"c\n"}])"), whole.npos) << whole;
    for (const std::size_t piece : {1, 2, 3, 7}) {
        EXPECT_EQ(recordsOf(text, rules, piece), whole) << piece;
    }
}

// A value that a rule makes stands where its name or its container stands in the text.
TEST(Reshaper, KeepsPlacesOfTheText) {
    qvej::Engine engine;
    qvej::DocumentOptions options;
    options.shape = shapeOf({"rows /root/d", "text /root/d/*/t", "inline /root/i", "drop /root/x"});
    qvej::Document document(engine, options);
    document.feed("{\"x\":[1,\n2],\"d\":{\n \"k\": {\"t\" :\n  [3,\n 4]}},\n\"i\":{\"v\":  5}}");
    document.finish();
    const struct {
        const char* path;
        int64_t line;
        int64_t column;
    } kCases[] = {
        {"/root/d/key", 3, 2},
        {"/root/d/t", 4, 3},
        {"/root/i_v", 6, 12},
    };
    const std::vector<qvej::PathStatistics> paths = document.pathStatistics();
    ASSERT_EQ(paths.size(), std::size(kCases));
    for (std::size_t i = 0; i < paths.size(); ++i) {
        EXPECT_EQ(qvej::withSlashes(paths[i].path), kCases[i].path);
        ASSERT_EQ(paths[i].kinds.size(), 1u);
        EXPECT_EQ(paths[i].kinds[0].first.line, kCases[i].line) << kCases[i].path;
        EXPECT_EQ(paths[i].kinds[0].first.column, kCases[i].column) << kCases[i].path;
    }
}

TEST(Reshaper, CutsATextLikeAnyLongString) {
    for (const std::size_t length : {32763, 32764}) {  // with brackets and quotes 4 bytes more
        const std::string text = "{\"t\":[ \"" + std::string(length, 'x') + "\" ]}";
        const std::string records = recordsOf(text, {"text /root/t"}, 1000);
        const std::string value = records.substr(records.find("=[") + 1);
        EXPECT_EQ(value.size(), 32767u + 1) << "with the line feed";
        EXPECT_EQ(value.ends_with("\"]\n"), length == 32763);
    }
}

TEST(Reshaper, LeavesMistakesWhereTheyAre) {
    const struct {
        const char* text;
        QVStatus status;
        int64_t offset;
    } kCases[] = {
        {R"({"d":{"a":[1,}]})", QV_JSON_VALUE, 13},
        {R"({"t":[1,2)", JMAP_INCOMPLETE, 9},
        {R"({"x":{"a":tru}})", QV_JSON_LITERAL, 13},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.text);
        qvej::Engine engine;
        qvej::DocumentOptions options;
        options.shape = shapeOf({"rows /root/d", "text /root/t", "drop /root/x"});
        qvej::Document document(engine, options);
        try {
            document.feed(c.text);
            document.finish();
            ADD_FAILURE();
        } catch (const qvej::Error& error) {
            EXPECT_EQ(qvStatusName(error.status()), std::string(qvStatusName(c.status)));
            EXPECT_EQ(error.offset(), c.offset);
        }
    }
    qvej::Engine engine;
    qvej::DocumentOptions options;
    options.encoding = engine.encodingId("ISO-8859-1");
    options.shape = shapeOf({"empty drop"});
    EXPECT_THROW(qvej::Document(engine, options), qvej::Error) << "only UTF-8";
}

}  // namespace
