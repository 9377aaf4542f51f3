// A document that is counted and walked in parts, on threads, against one that keeps records.
#include "client/parts/part_sequence.h"
#include "tests/client/parts_document.h"
#include "tests/testkit/random_document.h"

#include <atomic>
#include <fstream>
#include <random>
#include <span>

namespace jmap::test {
namespace {

// Of tables below /root of the names a, b, c and x.
constexpr const char* kMaps[] = {
    // A column of an ancestor, which may come after the children; two columns of one path.
    R"({"DATASETS":[{"DSNAME":"a","TABLEPATH":"/root/a","VARIABLES":[
        {"NAME":"o","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"oa","TYPE":"ORDINAL","PATH":"/root/a"},
        {"NAME":"c","TYPE":"CHARACTER","PATH":"/root/a/c"},
        {"NAME":"n","TYPE":"NUMERIC","PATH":"/root/a/c"},
        {"NAME":"x","TYPE":"CHARACTER","PATH":"/root/x"}]}]})",
    // Ordinals alone, and of paths beside the table; informats.
    R"({"DATASETS":[{"DSNAME":"o","TABLEPATH":"/root/a","VARIABLES":[
        {"NAME":"o","TYPE":"ORDINAL","PATH":"/root"},{"NAME":"ob","TYPE":"ORDINAL","PATH":"/root/b"},
        {"NAME":"oa","TYPE":"ORDINAL","PATH":"/root/a","OPTIONS":["NORETAIN"]}]},
       {"DSNAME":"r","TABLEPATH":"/root","VARIABLES":[
        {"NAME":"oa","TYPE":"ORDINAL","PATH":"/root/a"},{"NAME":"ob","TYPE":"ORDINAL","PATH":"/root/b"},
        {"NAME":"ix","TYPE":"ORDINAL","PATH":"/root/x","INFORMAT":["comma"]},
        {"NAME":"x","TYPE":"NUMERIC","PATH":"/root/x","INFORMAT":["comma"]},
        {"NAME":"xc","TYPE":"NUMERIC","PATH":"/root/x"}]},
       {"DSNAME":"oo","TABLEPATH":"/root","VARIABLES":[
        {"NAME":"o","TYPE":"ORDINAL","PATH":"/root"}]}]})",
    // A value that is kept from row to row.
    R"({"DATASETS":[{"DSNAME":"k","TABLEPATH":"/root","VARIABLES":[
        {"NAME":"o","TYPE":"ORDINAL","PATH":"/root"},
        {"NAME":"k","TYPE":"CHARACTER","PATH":"/root/b","OPTIONS":["RETAIN"]},
        {"NAME":"x","TYPE":"CHARACTER","PATH":"/root/x"}]}]})",
};

// What has been compared, so that a test can tell that it was enough.
struct Count {
    std::size_t divided = 0;
    std::size_t walkedInParts = 0;  // of them to the end
    std::size_t refused = 0;
    std::size_t items = 0;
};

constexpr Cutting kCuttings[] = {{1, 64, 2},
                                 {7, 1, 5},
                                 {100, 1000, 2},
                                 {1000, 17, 5},
                                 {1'000'000, 1'000'000, 2},
                                 {qvej::kUndivided, 100, 1}};

// Requires of the document in parts what it gives with records, with the automatic map and the
// others.
void compare(const Texts& of, const std::vector<Cutting>& cuttings, Count& count,
             std::span<const char* const> maps = kMaps) {
    SCOPED_TRACE(of.shown().substr(0, 4000));
    const Whole plain(of);
    const std::string want = described(plain.document);
    std::vector<std::pair<Lines, Lines>> items = {
        {itemsOf(plain.document, false), itemsOf(plain.document, true)}};
    std::vector<Lines> accounts = {accountOf(plain.document)};
    for (const char* map : maps) {
        Whole mapped(of);
        mapped.document.useMap(map);
        items.emplace_back(itemsOf(mapped.document, false), itemsOf(mapped.document, true));
        accounts.push_back(accountOf(mapped.document));
    }
    for (const Cutting& cutting : cuttings) {
        SCOPED_TRACE("parts of " + std::to_string(cutting.bytes));
        for (std::size_t map = 0; map < items.size(); ++map) {
            InParts divided(of, cutting);
            if (!divided.counted) {
                ASSERT_TRUE(of.refusable);
                ++count.refused;
                break;
            }
            if (map != 0) {
                divided.document.useMap(maps[map - 1]);
            } else {
                ASSERT_EQ(want, described(divided.document));
            }
            SCOPED_TRACE("map " + std::to_string(map));
            ASSERT_NO_FATAL_FAILURE(expectSame(items[map].first, itemsOf(divided.document, false)));
            count.walkedInParts += divided.readings == 1 ? 1 : 0;
            ASSERT_NO_FATAL_FAILURE(expectSame(items[map].second, itemsOf(divided.document, true)));
            ASSERT_NO_FATAL_FAILURE(expectSame(accounts[map], accountOf(divided.document)));
            count.items += items[map].first.size();
            ++count.divided;
        }
    }
}

// ---- Documents ----------------------------------------------------------------------------------

enum Shape { ARRAY, LINES, SEQUENCE, MEMBER, ANY, SHAPES };

// Elements as a text of that shape.
std::string joined(const Lines& elements, Shape shape, unsigned seed) {
    constexpr const char* kBetween[] = {",", ",\n", " , \r\n"};
    constexpr const char* kFeeds[] = {"\n", "\r\n"};
    const std::string between = shape == LINES      ? kFeeds[seed % 2]
                                : shape == SEQUENCE ? " "
                                                    : kBetween[seed % 3];
    std::string text = shape == MEMBER                       ? R"({"x":"\n","b":[1,{"x":2}],
                                             "a":[)"
                       : shape == LINES || shape == SEQUENCE ? ""
                                                             : " [";
    for (std::size_t i = 0; i < elements.size(); ++i) {
        text += (i == 0 ? "" : between) + elements[i];
        text += shape == LINES && seed % 7 == 6 && i % 3 == 1 ? "\n \n" : "";
    }
    switch (shape) {
        case MEMBER:
            return text + "\n],\n\"c\":[{\"x\":3},4],\"x\":1}";
        case LINES:
            return seed % 3 == 0 ? text : text + between;
        case SEQUENCE:
            return text;
        default:
            return text + "]\n";
    }
}

// A text of objects, of which one in `others` cases has elements of other kinds too.
Text randomText(unsigned seed, const Lines& names, bool* refusable) {
    RandomDocument values(seed, names, 40, 6);
    const auto shape = static_cast<Shape>(seed % SHAPES);
    const bool others = seed % 8 == 7;
    Lines elements;
    const bool hasElements = seed % 11 != 10;
    for (unsigned i = 0; hasElements && i < 3 + seed % 9; ++i) {
        const std::string x = i % 4 == 3 ? ""
                                         : R"(,"x":)" + std::string(i % 3 == 0   ? R"("\t12")"
                                                                    : i % 3 == 1 ? "3e400"
                                                                                 : "\"y\"");
        elements.push_back(R"({"b":)" + values.text(1 + static_cast<int>(seed % 3)) + R"(,"a":)" +
                           values.text(1 + static_cast<int>(i % 2)) + x + "}");
        if (others && i % 3 == 2) {
            elements.push_back(i % 2 == 0 ? "7" : values.text(2));
        }
    }
    const bool blank = shape == LINES && (seed % 7 == 6 || !hasElements);
    *refusable = *refusable || others || blank || shape == ANY ||
                 std::find(names.begin(), names.end(), "") != names.end();
    const std::string text = shape == ANY ? values.text(6) : joined(elements, shape, seed);
    return {shape == LINES && !hasElements ? "{}\n" : text, shape == LINES ? TextForm::LINES
                                                            : shape == SEQUENCE
                                                                ? TextForm::SEQUENCE
                                                                : TextForm::DOCUMENT};
}

const Lines kNames[] = {{"a", "b", "c"}, {"a", "b", "a\\u0002b", "FAKE", "a1"}, {"a", "", "c"}};

TEST(Parts, GiveWhatRecordsGive) {
    Count count;
    for (unsigned seed = 0; seed < 60; ++seed) {
        Texts of;
        of.texts = {randomText(seed, kNames[seed / 5 % 3], &of.refusable)};
        ASSERT_NO_FATAL_FAILURE(compare(of, {kCuttings[seed / 5 % 5]}, count)) << seed;
    }
    EXPECT_GT(count.divided, 120U);
    EXPECT_GT(count.refused, 5U);
    EXPECT_GT(count.items, 3000U);
}

TEST(Parts, GiveWhatRecordsGiveOfSeveralTexts) {
    Count count;
    for (unsigned seed = 0; seed < 30; ++seed) {
        Texts of;
        of.several = true;
        of.source = seed % 2 == 0;
        for (unsigned i = 0; i <= seed % 5; ++i) {
            of.texts.push_back(randomText(7 * seed + i, kNames[0], &of.refusable));
        }
        ASSERT_NO_FATAL_FAILURE(compare(of, {kCuttings[seed / 5 % 5]}, count)) << seed;
    }
    EXPECT_GT(count.divided, 40U);
    EXPECT_GT(count.items, 1000U);
}

// ---- Members ------------------------------------------------------------------------------------

// Of rows around the elements of the member a.
constexpr const char* kMemberMaps[] = {
    // Rows of the root that take nothing of the elements; values around them for rows of theirs.
    R"({"DATASETS":[{"DSNAME":"r","TABLEPATH":"/root","VARIABLES":[
        {"NAME":"oa","TYPE":"ORDINAL","PATH":"/root/a"},{"NAME":"o","TYPE":"ORDINAL","PATH":"/root"},
        {"NAME":"x","TYPE":"NUMERIC","PATH":"/root/x"},
        {"NAME":"k","TYPE":"CHARACTER","PATH":"/root/b/c","OPTIONS":["RETAIN"]}]},
       {"DSNAME":"oo","TABLEPATH":"/root","VARIABLES":[
        {"NAME":"o","TYPE":"ORDINAL","PATH":"/root"}]},
       {"DSNAME":"a","TABLEPATH":"/root/a","VARIABLES":[
        {"NAME":"oa","TYPE":"ORDINAL","PATH":"/root/a"},
        {"NAME":"c","TYPE":"CHARACTER","PATH":"/root/a/c"},
        {"NAME":"x","TYPE":"CHARACTER","PATH":"/root/x"}]},
       {"DSNAME":"ab","TABLEPATH":"/root/a/b","VARIABLES":[
        {"NAME":"oa","TYPE":"ORDINAL","PATH":"/root/a"},
        {"NAME":"c","TYPE":"NUMERIC","PATH":"/root/a/b/c"}]},
       {"DSNAME":"o","TABLEPATH":"/root/a","VARIABLES":[
        {"NAME":"o","TYPE":"ORDINAL","PATH":"/root"}]}]})",
    // A row of the root that takes values of the elements, or counts nothing but them.
    R"({"DATASETS":[{"DSNAME":"r","TABLEPATH":"/root","VARIABLES":[
        {"NAME":"x","TYPE":"NUMERIC","PATH":"/root/x"},
        {"NAME":"c","TYPE":"NUMERIC","PATH":"/root/a/c"}]}]})",
    R"({"DATASETS":[{"DSNAME":"o","TABLEPATH":"/root","VARIABLES":[
        {"NAME":"oa","TYPE":"ORDINAL","PATH":"/root/a"}]}]})",
};

// An object with an array of objects, and other members before and after it, which may have its
// name too.  A large array before it that goes on with other values makes the text indivisible.
Text textWithAMember(unsigned seed, const Lines& names) {
    RandomDocument values(seed, names, 20, 6);
    std::mt19937 random(seed);
    const auto value = [&] {
        const std::string one = values.text(1);
        const bool objects = one.starts_with("[[{") && random() % 8 != 0;
        return (objects ? "[0," : "") + one.substr(objects ? 2 : 1, one.size() - (objects ? 3 : 2));
    };
    const auto members = [&](std::size_t most) {
        std::string all;
        for (std::size_t left = random() % (most + 1); left > 0; --left) {
            const std::size_t name = random() % (2 * names.size());
            all += (all.empty() ? "\"" : ",\"") + (name < names.size() ? names[name] : "x") +
                   "\":" + value();
        }
        return all;
    };
    const std::string before = members(4);
    std::string text = "{" + before + (before.empty() ? "\"" : ", \"") +
                       names[random() % 3 == 0 ? random() % names.size() : 0] + "\" :[";
    for (std::size_t i = 0, count = 1 + random() % 12; i < count; ++i) {
        text += (i == 0 ? "\n{" : ",\n{") + members(i % 4) + "}";
    }
    const std::string after = members(4);
    return {text + (after.empty() ? "]}" : " ],\n" + after + "}")};
}

TEST(Parts, OfMembersGiveWhatRecordsGive) {
    const Lines names[] = {{"a", "b", "c"}, {"a", "b", "a\\u0002b", "c", "b1"}};
    Count count;
    for (unsigned seed = 0; seed < 120; ++seed) {
        Texts of;
        of.several = seed % 5 == 4;
        of.refusable = true;
        for (unsigned i = 0; i <= (of.several ? 2U : 0U); ++i) {
            of.texts.push_back(textWithAMember(3 * seed + i, names[seed % 7 == 6 ? 1 : 0]));
        }
        ASSERT_NO_FATAL_FAILURE(compare(of, {kCuttings[seed % 4]}, count, kMemberMaps)) << seed;
    }
    EXPECT_GT(count.divided, 400U);
    EXPECT_GT(count.walkedInParts, 200U);
    EXPECT_GT(count.items, 3000U);
}

TEST(Parts, OfMembersAreWalkedByThemselvesUnlessRowsCrossThem) {
    const std::string elements = R"([{"c":1},{"c":"2","b":[{"c":3},{}]},{},{"c":4}])";
    const struct {
        std::string text;
        const char* map;
        bool asOne;
    } cases[] = {
        {R"({"a":)" + elements + "}", nullptr, false},
        {R"({"x":1,"b":{"c":2},"t":["u"],"a":)" + elements + R"(,"n":3,"z":{"c":1}})", nullptr,
         false},
        {R"({"x":1,"a":)" + elements + R"(,"n":3,"x":2})", kMemberMaps[0], false},
        {R"({"x":1,"a":)" + elements + R"(,"n":3})", kMemberMaps[1], true},
        {R"({"x":1,"a":)" + elements + R"(,"n":3})", kMemberMaps[2], true},
        // The member is not the one that the table counts.
        {R"({"x":1,"b":)" + elements + R"(,"n":3})", kMemberMaps[2], false},
        // Its path lies below that of an open row.
        {R"({"a":{"c":1},"a\u0002b":)" + elements + "}", nullptr, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const Texts of = {{{c.text}}};
        Whole whole(of);
        InParts parts(of, {1, 100, 2});
        ASSERT_TRUE(parts.counted);
        if (c.map != nullptr) {
            whole.document.useMap(c.map);
            parts.document.useMap(c.map);
        }
        expectSame(itemsOf(whole.document, false), itemsOf(parts.document, false));
        EXPECT_EQ(c.asOne ? 2 : 1, parts.readings);
    }
}

// Whether a text that is divided is refused.
TEST(Parts, OfOddTexts) {
    const std::string longName(31, 'n');
    const std::string large = "\"" + std::string(5000, 'z') + "\"";
    const auto ofLength = [](std::size_t size) {
        return R"({"x":")" + std::string(size, 's') + R"(","a":{"c":"\u00e9)" +
               std::string(size - 2, 'c') + "\"}}";
    };
    const struct {
        std::vector<Text> texts;
        bool refused;
    } cases[] = {
        {{{"[]"}}, false},
        {{{"{}"}}, false},
        {{{"[1,[2],{}]"}}, false},
        {{{R"([{"x":1},{"":2}])"}}, true},
        {{{R"([{"x":1},{"x":2},3])"}}, true},
        {{{R"([{"x":1},{"x":2}]  )"}}, false},
        {{{"{}\n1\n{}\n", TextForm::LINES}}, true},
        {{{"{}\n\n\n\n\n\n\n\n\n{}", TextForm::LINES}}, true},
        {{{"{\"a\":1}\r\n{\"x\":1}\r\n", TextForm::LINES}}, false},
        {{{R"({"x":1} {"x":2}{"a":[{}]})", TextForm::SEQUENCE}}, false},
        // The number of an element is cut when its array comes after one of a shorter name.
        {{{R"([{"x":[1]},{")" + longName + R"(":[1,2]}])"}}, true},
        {{{R"([{")" + longName + R"(":[1]},{"x":1}])"}}, true},
        {{{R"([{"x":[1]},{")" + longName.substr(3) + R"(":[1,2]}])"}}, false},
        {{{"[" + ofLength(32766) + "," + ofLength(32767) + "," + ofLength(32768) + "," +
           ofLength(70000) + "]"}},
         false},
        {{{R"({"x":1,"b":[{"x":2},{"x":3},{"x":"é"}],"x":[1]})"}}, false},
        // Several texts: arrays of anything, and elements that are larger than a part.
        {{{"[1,2]"}, {"[[3]]"}, {"[]"}, {R"({"x":4})"}}, false},
        {{{R"([{"x":1},{"a":[{"c":)" + large + "}]}]"}, {"[" + large + "]\n"}, {"{}"}}, false},
        {{{R"([{"x":[1]},{"x":2}])"}, {"[{\"" + longName + R"(":[1,2]}])"}}, true},
        {{{R"([{"x":1}])"}, {R"({"":{"x":1}})"}}, true},
    };
    Count count;
    for (const auto& c : cases) {
        for (const Cutting& cutting : {Cutting{1, 100'000, 2}, Cutting{4, 700, 5}}) {
            Texts of;
            of.texts = c.texts;
            of.several = of.source = c.texts.size() > 1;
            of.refusable = c.refused;
            const std::size_t refused = count.refused;
            ASSERT_NO_FATAL_FAILURE(compare(of, {cutting}, count));
            EXPECT_EQ(c.refused, count.refused != refused) << of.shown().substr(0, 300);
        }
    }
}

TEST(Parts, OfRealDocuments) {
    const std::string folder = std::string(JMAP_SOURCE_DIR) + "/../shared/data/";
    std::size_t items = 0;
    for (const char* name : {"apache_builds.json", "github_events.json", "random.json",
                             "twitter_timeline.json", "amazon_cellphones.ndjson"}) {
        std::ifstream file(folder + name);
        if (!file) {
            GTEST_SKIP() << "no " << name;
        }
        SCOPED_TRACE(name);
        std::string text{std::istreambuf_iterator<char>(file), {}};
        const bool lines = std::string_view(name).ends_with("ndjson");
        const Texts of = {{{std::move(text), lines ? TextForm::LINES : TextForm::DOCUMENT}}};
        const Whole whole(of);
        const InParts parts(of, {20'000, 4096, 2});
        EXPECT_EQ(parts.counted, !lines) << "these lines are arrays";
        if (parts.counted) {
            ASSERT_EQ(described(whole.document), described(parts.document));
            const Lines want = itemsOf(whole.document, false);
            ASSERT_NO_FATAL_FAILURE(expectSame(want, itemsOf(parts.document, false)));
            items += want.size();
        }
    }
    EXPECT_GT(items, 3000U);
}

// The parts of a walk may be others than those that were counted.
TEST(Parts, AreWalkedAsOneWhenTheyCannotBeDividedAsTheyWereCounted) {
    for (const Text& text : {Text{"{\"x\":1}\n\n\n{\"x\":2}\n", TextForm::LINES},
                             Text{R"({"a":[{"c":1},{"c":2},3],"b":[{"x":4}]})"}}) {
        const Texts of = {{text}};
        const Whole whole(of);
        InParts parts(of, {1000, 1000, 2});
        ASSERT_TRUE(parts.counted);
        parts.parts->read = partsOf(parts.engine, of, {2, 1000, 2}).read;
        expectSame(itemsOf(whole.document, false), itemsOf(parts.document, false));
    }
}

// ---- What goes wrong ----------------------------------------------------------------------------

// Of a broken text there is no other result than of the whole.
TEST(Parts, OfABrokenTextAreRefused) {
    std::size_t broken = 0;
    std::mt19937 random(1);
    for (unsigned seed = 0; seed < 400; ++seed) {
        Texts of;
        of.several = seed % 3 == 0;
        for (unsigned i = 0; i <= (of.several ? 2U : 0U); ++i) {
            of.texts.push_back(randomText(5 * seed + i, kNames[0], &of.refusable));
        }
        std::string& text = of.texts[random() % of.texts.size()].text;
        const std::size_t at = random() % (text.size() + 1);
        if (seed % 4 == 0) {
            text.resize(at);
        } else {
            constexpr std::string_view kBytes = "{}[],:\"\\\n 1x\xff";
            text.replace(at, 1, 1, kBytes[random() % kBytes.size()]);
        }
        SCOPED_TRACE(of.shown());
        const InParts parts(of, kCuttings[seed % 3]);
        try {
            const Whole whole(of);
            if (parts.counted) {
                ASSERT_EQ(described(whole.document), described(parts.document));
                expectSame(itemsOf(whole.document, false), itemsOf(parts.document, false));
            }
        } catch (const qvej::Error&) {
            ASSERT_FALSE(parts.counted);
            ++broken;
        }
    }
    EXPECT_GT(broken, 200U);
    // Whose last part, taken by itself, is a text without a mistake.
    for (const char* text : {R"([{"x":1},{"x":2})", R"([{"x":1},[])", R"([{"x":1},{"x":2}]])"}) {
        EXPECT_FALSE(InParts({{{text}}}, {1, 100, 2}).counted) << text;
    }
}

TEST(Parts, MayBeLeftAtAnyItem) {
    const Texts of = manyObjects(100);
    const Whole whole(of);
    const Lines want = itemsOf(whole.document, false);
    for (const unsigned threads : {1U, 2U, 5U}) {
        const InParts parts(of, {1, 100, threads});
        for (int items = 0; items < 60; items += 1 + items / 5) {
            TablePass pass(parts.document, tablesOf(parts.document));
            PassItem item;
            for (int i = 0; i < items; ++i) {
                ASSERT_TRUE(pass.next(item));
            }
        }
        expectSame(want, itemsOf(parts.document, false));
    }
}

// Of two readings each fails at some time; what has come before is right.
TEST(Parts, ThrowWhatReadingThrows) {
    const Texts of = manyObjects(50);
    const auto failing = [&](qvej::ReadParts read, int last) {
        return [=](uint64_t bytes, const qvej::TakePart& take) {
            int left = last;
            read(bytes, [&](qvej::TextPart part) {
                if (left-- == 0) {
                    throw qvej::Error(QV_IO_READ, "no more", qvej::Place{"the file"});
                }
                take(std::move(part));
            });
        };
    };
    for (int last = 0; last < 50; last += 7) {
        InParts parts(of, {1, 100, 2});
        ASSERT_TRUE(parts.counted);
        const Lines want = itemsOf(parts.document, false);
        parts.parts->read = failing(parts.parts->read, last);
        TablePass pass(parts.document, tablesOf(parts.document));
        std::size_t items = 0;
        PassItem item;
        try {
            for (; pass.next(item); ++items) {
                ASSERT_EQ(want[items], shown(item));
            }
            ADD_FAILURE() << "it has not failed";
        } catch (const qvej::Error& error) {
            EXPECT_EQ(QV_IO_READ, error.status());
            EXPECT_EQ("the file", error.file());
        }
        EXPECT_THROW((void)pass.next(item), qvej::Error);
        Document sum(parts.engine, InParts::optionsOf(*parts.parts));
        EXPECT_THROW((void)qvej::scanParts(*parts.parts, sum), qvej::Error);
    }
}

// Counts how many there are.
class CountedWork final : public qvej::RowWork {
   public:
    explicit CountedWork(std::atomic<int>& count) : count_(count) { ++count_; }
    ~CountedWork() override { --count_; }
    void take(const PassItem& /*item*/) override {}
    [[nodiscard]] bool full() const override { return true; }
    [[nodiscard]] std::unique_ptr<qvej::RowResult> result() override {
        return std::make_unique<qvej::RowResult>();
    }

   private:
    std::atomic<int>& count_;
};

TEST(Parts, EndTheirWorkWhenATakerThrows) {
    const Texts of = manyObjects(200);
    for (const unsigned threads : {1U, 2U, 5U}) {
        for (int last = 0; last < 40; last += 13) {
            const InParts parts(of, {1, 100, threads});
            TablePass pass(parts.document, tablesOf(parts.document));
            ASSERT_TRUE(pass.works());
            std::atomic<int> works = 0;
            int left = last;
            const auto make = [&] { return std::make_unique<CountedWork>(works); };
            const auto take = [&](const std::unique_ptr<qvej::RowResult>& /*result*/) {
                EXPECT_LT(0, works);
                if (left-- == 0) {
                    throw qvej::Error(QV_STOPPED);
                }
            };
            EXPECT_THROW(pass.work(make, take), qvej::Error);
            EXPECT_EQ(0, works) << threads << " threads, after " << last;
        }
    }
}

TEST(Parts, KeepTheLimitsOfTheDocument) {
    const Texts of = manyObjects(50);
    InParts parts(of, {1, 100, 3});
    ASSERT_TRUE(parts.counted);
    const auto counted = [&](const char* limit, auto set) {
        SCOPED_TRACE(limit);
        qvej::PartsOfDocument limited = *parts.parts;
        set(limited.options);
        Document sum(parts.engine, InParts::optionsOf(limited));
        return qvej::scanParts(limited, sum);
    };
    EXPECT_FALSE(counted("memory", [](auto& options) { options.leastMemory = UINT64_MAX; }));
    EXPECT_FALSE(counted("paths", [](auto& options) { options.maxPaths = 1; }));
    EXPECT_TRUE(counted("none", [](auto& options) { options.maxPaths = 10; }));
    parts.parts->options.leastMemory = UINT64_MAX;
    try {
        (void)itemsOf(parts.document, false);
        ADD_FAILURE() << "it has not failed";
    } catch (const qvej::Error& error) {
        EXPECT_EQ(QV_LIMIT_MEMORY, error.status());
    }
}

}  // namespace
}  // namespace jmap::test
