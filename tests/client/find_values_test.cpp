// Values that are found in open documents.
#include "client/find/find_values.h"

#include "client/error.h"
#include "tests/testkit/scratch_folder.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace jmap::test {
namespace {

using qvej::FoundValue;
using qvej::OpenDocument;
using qvej::OpenOptions;
using qvej::PathPattern;
using qvej::ValueTest;

// "file:line:column path=text" of what is found, at most `most`.
std::vector<std::string> found(const OpenDocument& open, const std::vector<PathPattern>& patterns,
                               const ValueTest& test, std::size_t most = 100) {
    std::vector<std::string> lines;
    findValues(open, patterns, test, [&](const std::string& file, const FoundValue& value) {
        lines.push_back(file.substr(file.rfind('/') + 1) + ":" + std::to_string(value.at.line) +
                        ":" + std::to_string(value.at.column) + " " + std::string(value.path) +
                        "=" + std::string(value.text));
        return lines.size() < most;
    });
    return lines;
}

using Lines = std::vector<std::string>;

TEST(FindValues, AreWhereTheTextsHaveThem) {
    const OpenDocument memory(
        {.memory = "{\"a\":[\"x\",\n\"y\"],\"b\":\"X\"}", .shape = "drop /root/b"});
    EXPECT_EQ(found(memory, {}, ValueTest("x", {}, true)),
              (Lines{"<memory>:1:7 /root/a=x", "<memory>:2:10 /root/b=X"}));
    EXPECT_EQ(found(memory, {PathPattern::parse("/root/a")}, ValueTest({}, "^[xy]$", false)),
              (Lines{"<memory>:1:7 /root/a=x", "<memory>:2:1 /root/a=y"}))
        << "a second time";

    const ScratchFolder folder;
    folder.write("1.jsonl", "{\"a\":1}\n{\"a\":2}\n");
    folder.write("2.json", "{\"a\":2}");
    const OpenDocument files({.inputs = qvej::inputList({folder.path.string()})});
    const ValueTest two("2", {}, false);
    EXPECT_EQ(found(files, {}, two), (Lines{"1.jsonl:2:6 /root/a=2", "2.json:1:6 /root/a=2"}));
    EXPECT_EQ(found(files, {}, two, 1), (Lines{"1.jsonl:2:6 /root/a=2"}));
}

TEST(FindValues, FailuresReachTheCaller) {
    std::string text = R"({"a":1})";
    const OpenDocument once({.pull =
                                 [&] {
                                     static std::string piece;
                                     piece.swap(text);
                                     text.clear();
                                     return std::string_view(piece);
                                 },
                             .name = "pipe"});
    try {
        found(once, {}, ValueTest("1", {}, false));
        ADD_FAILURE();
    } catch (const qvej::Error& error) {
        EXPECT_EQ(QV_UNSUPPORTED, error.status());
        EXPECT_EQ("pipe", error.file());
    }
    const OpenDocument memory({.memory = R"({"a":1})"});
    EXPECT_THROW(findValues(memory, {}, ValueTest("1", {}, false),
                            [](const std::string&, const FoundValue&) -> bool {
                                throw std::range_error("of the handler");
                            }),
                 std::range_error);
    try {
        ValueTest({}, "(", false);
        ADD_FAILURE();
    } catch (const qvej::Error& error) {
        EXPECT_EQ(QV_BADPARMS, error.status());
        EXPECT_NE(std::string::npos, std::string(error.what()).find("missing )")) << error.what();
    }
}

}  // namespace
}  // namespace jmap::test
