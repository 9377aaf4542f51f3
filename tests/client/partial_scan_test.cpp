// Scans of ranges of files, against a scan of the whole.
#include "client/ranges/partial_scan.h"

#include "client/error.h"
#include "client/input/inputs_reader.h"
#include "client/ranges/bad_lines.h"
#include "client/ranges/range_document.h"
#include "tests/client/parts_document.h"
#include "tests/client/temporary_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace jmap::test {
namespace {

using qvej::Engine;
using qvej::PartialScan;
using qvej::PartialScanOptions;
using qvej::TextForm;
using qvej::TextRange;
using Kind = qvej::Partition::Kind;

std::string rows(int count, const std::string& between) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += (i == 0 ? "" : between) + R"({"id":)" + std::to_string(i) + R"(,"tags":["a",")" +
                std::string(i % 7, 'x') + (i % 5 == 0 ? R"("],"late":{"n":1.5}})" : R"("]})");
    }
    return text;
}

struct Whole {
    std::string map;
    std::map<std::string, uint64_t> counts;
};

std::map<std::string, uint64_t> countsOf(Engine& engine, const PartialScan& scan) {
    std::map<std::string, uint64_t> counts;
    for (const qvej::ContainerCount& count : scan.counts(engine)) {
        counts[count.path] = count.count;
    }
    return counts;
}

std::string mapOf(Engine& engine, const std::vector<std::string>& files) {
    qvej::InputsReader reader({files, files.size() > 1}, {});
    qvej::Document document(engine, reader.documentOptions());
    reader.read(document);
    return document.mapText();
}

PartialScan scanOf(Engine& engine, const std::vector<TextRange>& ranges, bool asTree) {
    std::vector<PartialScan> scans;
    for (const TextRange& range : ranges) {
        // As on another machine.
        scans.emplace_back(PartialScan::of(engine, range, {}).bytes());
    }
    while (asTree && scans.size() > 1) {
        std::vector<PartialScan> sums;
        for (std::size_t i = 0; i < scans.size(); i += 2) {
            sums.push_back(i + 1 < scans.size()
                               ? PartialScan::merged(engine, {scans[i], scans[i + 1]})
                               : scans[i]);
        }
        scans = sums;
    }
    return PartialScan::merged(engine, scans);
}

TEST(PartialScans, AddUpToTheScanOfTheWhole) {
    const TemporaryFolder folder;
    struct Case {
        const char* name;
        std::string text;
        bool divisible;
    };
    const Case cases[] = {
        {"array.json", "[" + rows(300, " , \n") + " ]\n", true},
        {"marked.json", "\xEF\xBB\xBF[" + rows(300, ",") + "]", true},
        {"member.json", R"({"n":3,"rows":[)" + rows(300, ",") + R"(],"x":{"y":[1]}})", true},
        {"lines.jsonl", rows(300, "\n") + "\n\n\n", true},
        {"marked.jsonl", "\xEF\xBB\xBF" + rows(300, "\n"), true},
        {"object.json", R"({"a":{"b":[1,2,3]}})", false},
        {"scalars.json", "[1,2,[3],{\"a\":4}]", false},
    };
    for (const Case& one : cases) {
        Engine engine;
        const std::string file = folder.file(one.name, one.text);
        const std::string map = mapOf(engine, {file});
        const auto counts = countsOf(
            engine,
            PartialScan::of(engine, TextRange{.file = file, .form = TextForm::DOCUMENT}, {}));
        EXPECT_FALSE(counts.empty());
        for (const uint64_t bytes : {1, 100, 1000, 100'000}) {
            const std::vector<TextRange> ranges = qvej::rangesOf(file, bytes, {});
            EXPECT_EQ(one.divisible && bytes<10'000, ranges.size()> 3) << one.name << bytes;
            for (const bool asTree : {false, true}) {
                const PartialScan scan = scanOf(engine, ranges, asTree);
                EXPECT_EQ(map, scan.mapText(engine)) << one.name << bytes;
                EXPECT_EQ(counts, countsOf(engine, scan)) << one.name << bytes;
            }
        }
    }
}

std::map<std::string, uint64_t> added(std::map<std::string, uint64_t> sum, Engine& engine,
                                      const PartialScan& scan) {
    for (const auto& [path, count] : countsOf(engine, scan)) {
        sum[path] += count;
    }
    return sum;
}

// Without what is known of columns.
Lines rowsOf(const qvej::Document& document) {
    Lines lines = itemsOf(document, false);
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("columns of"); });
    return lines;
}

Lines alldataOf(const qvej::Document& document) {
    Lines lines;
    TablePass pass(document, {&document.alldata()});
    for (PassItem item; pass.next(item);) {
        std::string& line = lines.emplace_back();
        for (const qvej::PassCell& cell : item.cells) {
            line += std::to_string(cell.kind) + ":";
            line += cell.kind == JMAP_CELL_MISSING ? ""
                    : cell.kind == JMAP_CELL_COUNT
                        ? std::to_string(cell.count)
                        : std::string(qvej::view(cell.text, cell.textLen));
            line += "|";
        }
    }
    return lines;
}

// The items of the ranges, one range after the other.
Lines itemsOfRanges(Engine& engine, const std::vector<TextRange>& ranges,
                    Lines (*rowsOf)(const qvej::Document&)) {
    std::vector<PartialScan> scans;
    for (const TextRange& range : ranges) {
        scans.push_back(PartialScan::of(engine, range, {}));
    }
    const PartialScan whole = PartialScan::merged(engine, scans);
    std::map<std::string, uint64_t> before;
    Lines lines;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        std::vector<qvej::ContainerCount> counts;
        for (const auto& [path, count] : before) {
            counts.push_back({path, count});
        }
        const qvej::RangeDocument part(engine, {whole, ranges[i], counts, i + 1 == ranges.size()});
        const Lines more = rowsOf(part.document());
        lines.insert(lines.end(), more.begin(), more.end());
        before = added(before, engine, scans[i]);
    }
    return lines;
}

// The same of each table, since those of different tables come as they are completed.
Lines sorted(Lines lines) {
    std::stable_sort(lines.begin(), lines.end(), [](const std::string& a, const std::string& b) {
        return a.substr(0, a.find(' ')) < b.substr(0, b.find(' '));
    });
    return lines;
}

TEST(RangeDocuments, HaveTheRowsOfTheirRange) {
    const TemporaryFolder folder;
    const std::string member = R"({"n":3,"rows":[)" + rows(300, ",") + R"(],"x":{"y":[1]}})";
    const std::pair<const char*, std::string> cases[] = {
        {"array.json", "[" + rows(300, " , \n") + " ]\n"},
        {"member.json", member},
        {"lines.jsonl", rows(300, "\n") + "\n\n"},
        {"object.json", R"({"a":{"b":[1,2,3]},"c":[{"d":1},{"d":2}]})"},
    };
    for (const auto& [name, text] : cases) {
        Engine engine;
        const std::string file = folder.file(name, text);
        qvej::InputsReader reader({{file}, false}, {});
        qvej::Document document(engine, reader.documentOptions());
        reader.read(document);
        const Lines want = sorted(rowsOf(document));
        for (const uint64_t bytes : {1, 700, 100'000}) {
            const std::vector<TextRange> ranges = qvej::rangesOf(file, bytes, {});
            EXPECT_EQ(want, sorted(itemsOfRanges(engine, ranges, rowsOf))) << name << bytes;
        }
    }
}

TEST(RangeDocuments, HaveTheValuesOfTheirRange) {
    const TemporaryFolder folder;
    const std::string head = R"({"n":3,"deep":{"er":{"than":{"rows":[1]}}},"rows":[)";
    const std::pair<const char*, std::string> cases[] = {
        {"array.json", "[" + rows(300, ",") + "]"},
        {"member.json", head + rows(300, ",") + R"(],"x":{"y":[1]}})"},
        {"lines.jsonl", rows(300, "\n") + "\n\n"},
        {"long.json", "[" + rows(30, ",") + R"(,{"t":{"x":")" + std::string(40'000, 'x') +
                          R"(",")" + std::string(300, 'n') + R"(":null}},)" + rows(30, ",") +
                          R"(,{"a":{"b":{"c":{"d":[]}}}}])"},
    };
    for (const auto& [name, text] : cases) {
        Engine engine;
        const std::string file = folder.file(name, text);
        qvej::InputsReader reader({{file}, false}, {});
        qvej::Document document(engine, reader.documentOptions());
        reader.read(document);
        const Lines want = alldataOf(document);
        for (const uint64_t bytes : {1, 700, 100'000}) {
            const std::vector<TextRange> ranges = qvej::rangesOf(file, bytes, {});
            EXPECT_EQ(want, itemsOfRanges(engine, ranges, alldataOf)) << name << bytes;
        }
    }
}

TEST(PartialScans, TakeTheLinesThatBeginInARangeAndWholeFiles) {
    const TemporaryFolder folder;
    Engine engine;
    const std::string lines = rows(12, "\n") + "\n";
    const std::string file = folder.file("a.jsonl", lines);
    const std::string map = mapOf(engine, {file});
    const auto range = [&](uint64_t begin, uint64_t end) {
        return TextRange{file, TextForm::LINES, {{begin, end, Kind::MIDDLE, "", 0, 1}}};
    };
    for (uint64_t cut = 0; cut <= lines.size(); ++cut) {
        const PartialScan scan =
            scanOf(engine, {range(0, cut / 2), range(cut / 2, cut), range(cut, UINT64_MAX)}, false);
        ASSERT_EQ(map, scan.mapText(engine)) << cut;
        ASSERT_EQ(12U, countsOf(engine, scan)["\x02root"]) << cut;
    }
    const std::string two = folder.file("two.jsonl", "{\"a\":1}\n{\"b\":1}\n");
    const TextRange second = {two, TextForm::LINES, {{8, 16, Kind::MIDDLE, "", 0, 1}}};
    EXPECT_EQ(mapOf(engine, {folder.file("second.json", "[{\"b\":1}]")}),
              PartialScan::of(engine, second, {}).mapText(engine));
    const std::string other = folder.file("b.json", R"([{"id":"x","more":[{"z":1}]},5])");
    const PartialScan both =
        PartialScan::merged(engine, {PartialScan::of(engine, range(0, UINT64_MAX), {}),
                                     PartialScan::of(engine, TextRange{.file = other}, {})});
    EXPECT_EQ(mapOf(engine, {file, other}), both.mapText(engine));
}

TEST(PartialScans, OfLinesThatWereNotReadCountThemAndLeaveOutBadOnes) {
    const TemporaryFolder folder;
    Engine engine;
    const std::string mark = "\xEF\xBB\xBF";
    const std::string good = mark + rows(30, "\n") + "\n";
    const std::string bad = mark + "{\"x\":}\n" + rows(30, "\n{\"z\":1}}\n\n") + "\n}";
    const std::string map = mapOf(engine, {folder.file("good.jsonl", good)});
    for (const std::string& text : {good, bad}) {
        const std::string file = folder.file("a.jsonl", text);
        const auto feeds = static_cast<uint64_t>(std::count(text.begin(), text.end(), '\n'));
        for (const uint64_t bytes : {1, 50, 300, 100'000}) {
            const std::vector<TextRange> ranges =
                qvej::rangesOf(file, bytes, {}, {}, {}, std::filesystem::file_size(file));
            EXPECT_EQ(bytes<1000, ranges.size()> 1);
            PartialScanOptions options;
            options.skipBadLines = true;
            std::vector<PartialScan> scans;
            qvej::SeenLines all;
            std::vector<int64_t> badLines;
            for (TextRange range : ranges) {
                if (!range.whole()) {
                    range.pieces.front().line = static_cast<int64_t>(all.feeds) + 1;
                }
                qvej::SeenLines seen;
                scans.push_back(PartialScan::of(engine, range, options, &seen));
                all.feeds += seen.feeds;
                all.bad += seen.bad;
                qvej::eachBadLine(engine, range, {}, 0, {}, [&](const qvej::BadLine& line) {
                    badLines.push_back(line.line);
                });
            }
            EXPECT_EQ(map, PartialScan::merged(engine, scans).mapText(engine)) << bytes;
            EXPECT_EQ(feeds, all.feeds) << bytes;
            EXPECT_EQ(all.bad, badLines.size()) << bytes;
            std::vector<int64_t> want = {1};
            for (int64_t line = 3; line < 90; line += 3) {
                want.push_back(line);
            }
            want.push_back(90);
            EXPECT_EQ(text == bad ? want : std::vector<int64_t>(), badLines) << bytes;
        }
    }
}

TEST(PartialScans, HaveAShapeWhereItsRulesNeedNothingOfOtherElements) {
    const TemporaryFolder folder;
    Engine engine;
    const std::string array = folder.file("a.json", "[" + rows(30, ",") + "]");
    const std::string member =
        folder.file("m.json", R"({"n":{"x":1},"r\u006fws":[)" + rows(30, ",") + "]}");
    const std::string plain =
        folder.file("p.json", R"({"n":{"x":1},"rows":[)" + rows(30, ",") + "]}");
    const struct {
        std::string file, rule;
        bool apart;
    } cases[] = {
        {array, "rows /root", true},       {array, "empty drop", true},
        {array, "text /root/late", true},  {plain, "inline /root/rows/late", true},
        {plain, "drop /root/n", true},     {plain, "empty drop", false},
        {plain, "rows /root", false},      {plain, "text /root/rows", false},
        {plain, "only /root/rows", false}, {member, "drop /root/n", false},
    };
    for (const auto& one : cases) {
        PartialScanOptions options;
        options.shape.addRule(one.rule);
        std::vector<PartialScan> scans;
        try {
            for (const TextRange& range : qvej::rangesOf(one.file, 100, {})) {
                scans.push_back(PartialScan::of(engine, range, options));
            }
            EXPECT_TRUE(one.apart) << one.file << one.rule;
            const TextRange whole = {.file = one.file};
            EXPECT_EQ(PartialScan::of(engine, whole, options).mapText(engine),
                      PartialScan::merged(engine, scans).mapText(engine))
                << one.rule;
        } catch (const qvej::Error& error) {
            EXPECT_FALSE(one.apart) << one.file << one.rule;
            EXPECT_EQ(QV_UNSUPPORTED, error.status()) << error.what();
        }
    }
}

TEST(PartialScans, SayWhatIsWrongAndWhere) {
    const TemporaryFolder folder;
    Engine engine;
    for (const std::string between : {",", ",\n"}) {
        const std::string text =
            "[" + rows(30, between) + between + "{\"a\":tru}" + between + rows(30, between) + "]";
        const std::string file = folder.file("a.json", text);
        const auto offset = static_cast<int64_t>(text.find("tru}")) + 3;
        const bool oneLine = between == ",";
        int failed = 0;
        for (const TextRange& range : qvej::rangesOf(file, 100, {})) {
            try {
                (void)PartialScan::of(engine, range, {});
            } catch (const qvej::Error& error) {
                ++failed;
                EXPECT_EQ(file, error.file());
                EXPECT_EQ(oneLine ? 1 : 31, error.line());
                EXPECT_EQ(oneLine ? offset + 1 : 9, error.column());
                EXPECT_EQ(offset, error.offset());
            }
        }
        EXPECT_EQ(1, failed);
    }
    const std::string good = PartialScan::of(engine, R"([{"a":1}])", {}).bytes();
    const PartialScan named = PartialScan::of(engine, R"([{"":1}])", {});
    const std::vector<std::vector<PartialScan>> sums = {
        {PartialScan("")},
        {PartialScan(good + "x")},
        {PartialScan(good.substr(0, good.size() - 1))},
        {named, named},
    };
    for (const std::vector<PartialScan>& scans : sums) {
        EXPECT_THROW((void)PartialScan::merged(engine, scans), qvej::Error);
    }
    EXPECT_NO_THROW((void)PartialScan::merged(engine, {named}));
}

}  // namespace
}  // namespace jmap::test
