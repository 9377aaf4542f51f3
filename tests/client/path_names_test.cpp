// Names that paths give: how they are joined, and that no two are the same.
#include "client/path_names.h"

#include "client/document.h"
#include "client/engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace {

using qvej::Longer;
using qvej::NamedPath;
using qvej::PathName;

// A path with "|" for the separator, from "ordinal|root|a" with its prefix.
std::string pathOf(std::string path) {
    std::replace(path.begin(), path.end(), '|', '\x02');
    return path;
}

std::vector<std::string> namesOf(const std::vector<std::string>& paths, Longer longer) {
    const auto path = [&](std::size_t i) -> NamedPath { return {{}, paths[i]}; };
    const std::vector<PathName> names = qvej::distinctNames(paths.size(), path, longer);
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < paths.size(); ++i) {
        texts.push_back(qvej::nameOf(path(i), names.empty() ? PathName() : names[i]));
    }
    return texts;
}

TEST(PathNames, JoinPiecesSoThatEachCanBeToldApart) {
    constexpr struct {
        const char* path;
        uint32_t pieces;
        uint32_t number;
        const char* name;
    } kCases[] = {
        {"|root|a", 1, 0, "a"},
        {"|root|a", 2, 0, "root/a"},
        {"|root|a", 9, 0, "root/a"},
        {"|root|a/b\\", 1, 0, "a/b\\"},
        {"|root|a/b\\", 2, 0, "root/a\\/b\\\\"},
        {"|root||", 1, 0, ""},
        {"|root||", 2, 0, "/"},
        {"|root||x", 2, 2, "/x~2"},
        {"", 1, 0, ""},
        {"|root|\xC3\xA9\xC3", 1, 0, "\xC3\xA9\xEF\xBF\xBD"},
    };
    for (const auto& c : kCases) {
        const std::string path = pathOf(c.path);
        EXPECT_EQ(qvej::nameOf({{}, path}, {c.pieces, c.number}), c.name) << c.path;
    }
}

// Paths of pieces that read like joined ones, many of them the same.
TEST(PathNames, AllDiffer) {
    constexpr const char* kPieces[] = {"a",   "b", "a/b", "a\\/b", "b~2",
                                       "a/a", "/", "\\",  "",      "a~2"};
    std::mt19937 random(12);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::string> paths;
        for (std::size_t i = random() % 40; i > 0; --i) {
            std::string path = "\x02root";
            for (std::size_t depth = random() % (round % 2 == 0 ? 4 : 24); depth > 0; --depth) {
                path += "\x02" + std::string(kPieces[random() % (round % 3 == 0 ? 2 : 10)]);
            }
            paths.push_back(path);
        }
        for (const Longer longer : {Longer::ALL, Longer::LATER}) {
            const std::vector<std::string> names = namesOf(paths, longer);
            EXPECT_EQ(std::set(names.begin(), names.end()).size(), paths.size());
        }
    }
}

// With LATER a name does not depend on those after it.
TEST(PathNames, LaterOnesLeaveEarlierOnesAsTheyAre) {
    std::vector<std::string> paths;
    for (const char* path : {"|root", "|root|a", "|root|a|a", "|root|a|a|b", "|root|b", "|root|a|b",
                             "|root|a", "|root|c|a"}) {
        paths.push_back(pathOf(path));
    }
    const std::vector<std::string> whole = namesOf(paths, Longer::LATER);
    EXPECT_EQ(whole, (std::vector<std::string>{"root", "a", "a/a", "b", "root/b", "a/b", "root/a",
                                               "c/a"}));
    while (!paths.empty()) {
        paths.pop_back();
        const std::vector<std::string> names = namesOf(paths, Longer::LATER);
        EXPECT_TRUE(std::equal(names.begin(), names.end(), whole.begin()));
    }
}

// The work for each name must not grow with their number: these would take hours.
TEST(PathNames, ManyEqualOnesEachGetANumberAtOnce) {
    const std::vector<std::string> paths(100'000, pathOf("|root|x"));
    EXPECT_EQ(namesOf(paths, Longer::ALL).back(), "root/x~100000");
}

// In an encoding of one byte a character, and of a name that the engine cuts within a character.
TEST(PathNames, AreUtf8) {
    qvej::Engine engine;
    constexpr struct {
        const char* encoding;
        const char* text;
        const char* name;
    } kCases[] = {
        {"UTF-8", "[{\"\xC3\xA9\":1}]", "\xC3\xA9"},
        {"ISO-8859-1", "[{\"\xE9\":1}]", "\xC3\xA9"},
    };
    for (const auto& c : kCases) {
        qvej::Document document(
            engine, {.encoding = engine.encodingId(c.encoding), .naming = qvej::Naming::ORIGINAL});
        document.feed(c.text);
        document.finish();
        const qvej::Columns& columns = document.tables().at(0).columns;
        EXPECT_EQ(columns[columns.size() - 1].name, c.name) << c.encoding;
        EXPECT_EQ(columns[0].name, "ordinal_root");
    }
}

}  // namespace
