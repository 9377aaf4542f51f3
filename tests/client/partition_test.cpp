// Texts are cut where they may be, however they come and whichever routine looks at them.
#include "client/partition/partition_finder.h"
#include "client/partition/partition_reader.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using qvej::Cut;
using qvej::Partition;
using qvej::PartitionFinder;
using qvej::PartitionReader;
using qvej::SkimKernel;
using qvej::TextForm;

constexpr SkimKernel kKernels[] = {SkimKernel::PORTABLE, SkimKernel::SSE2, SkimKernel::AVX2};

// ---- What is told of a text
// ----------------------------------------------------------------------

struct Found {
    std::vector<Partition> partitions;
    std::string member;
    std::size_t held = 0;  // bytes that were given out only after the last piece
};

// The parts of a partition that came in several, put together.
std::vector<Partition> joined(const std::vector<Partition>& parts) {
    std::vector<Partition> whole;
    bool goesOn = false;
    for (const Partition& part : parts) {
        if (goesOn) {
            EXPECT_EQ(part.begin.offset, whole.back().begin.offset);
            EXPECT_EQ(part.kind, whole.back().kind);
            whole.back().text += part.text;
        } else {
            whole.push_back(part);
        }
        goesOn = part.more;
    }
    EXPECT_FALSE(goesOn);
    return whole;
}

Found divide(std::string_view text, TextForm form, uint64_t target, std::size_t piece,
             SkimKernel kernel) {
    PartitionFinder finder(form, target, kernel);
    Found found;
    PartitionReader* gets = nullptr;
    PartitionReader reader(finder, [&](const Partition& partition) {
        found.partitions.push_back(partition);
        gets->giveBack(partition.text);
    });
    gets = &reader;
    for (std::size_t at = 0; at < text.size(); at += piece) {
        reader.feed(text.substr(at, piece));
    }
    found.held = text.size();
    for (const Partition& partition : found.partitions) {
        found.held -= partition.text.size();
    }
    reader.finish();
    found.partitions = joined(found.partitions);
    found.member = finder.member();
    return found;
}

// What each partition is, and the text with '|' between them: "FML [{},|{},|{}]".
std::string shown(const std::vector<Partition>& partitions) {
    std::string kinds, text;
    for (const Partition& partition : partitions) {
        text += (kinds.empty() ? "" : "|") + partition.text;
        kinds += "WFMLHTR"[static_cast<int>(partition.kind)];
    }
    return kinds + " " + text;
}

// Each partition says where it begins, and they are the text.
void expectPlaces(const std::vector<Partition>& partitions, std::string_view text) {
    std::string before;
    for (const Partition& partition : partitions) {
        EXPECT_EQ(partition.begin.offset, before.size());
        EXPECT_EQ(partition.begin.line, 1 + std::count(before.begin(), before.end(), '\n'));
        EXPECT_EQ(partition.begin.column, before.size() - (before.rfind('\n') + 1) + 1);
        before += partition.text;
    }
    EXPECT_EQ(before, text);
}

TEST(Partition, CutsBetweenElementsAndLines) {
    const struct {
        const char* name;
        std::string_view expected;  // as `shown` says
        uint64_t target = 1;
        TextForm form = TextForm::DOCUMENT;
        std::string_view member = {};
    } cases[] = {
        {"nothing", "W "},
        {"white space", "W  \n\t"},
        {"scalar", "W 12"},
        {"string", "W \"[{},{}]\""},
        {"empty array", "W [ ]"},
        {"one element", "W [{}]"},
        {"elements", "FML [{},|{},|{}]"},
        {"white space, CRLF", "FML \r\n[ {\"a\" : 1\r\n} ,|\r\n {},|\n\n{}\n]\n"},
        {"target", "FML [{\"a\":1},{\"b\":2},|{\"c\":3},{\"d\":4},|{\"e\":5},{}]", 16},
        {"brackets in strings", "FL [{\"]},{\":\"[[{{\"},|{\"a\":\"}]\"}]"},
        {"escapes", R"(FML [{"\"":"\\\"},{"},|{"\\":"\\\\"},|{"a":"\\\\\\\"},{"}])"},
        {"non-ASCII", "FL [{\"\u00e9\u20ac\":\"\U0001f600\"},|{\"\u00fb\u00fd\":1}]"},
        {"nested", "FL [{\"a\":[{},{}],\"b\":[[],[]]},|{\"a\":{\"b\":{}}}]"},
        {"other elements", "FR [{},|{},1,{},{}]"},
        {"other first element", "W [1,{},{}]"},
        {"arrays as elements", "W [[{}],[{}]]"},
        {"comma too many", "FR [{},|{},]"},
        {"comma missing", "FR [{},|{} {},{}]"},
        {"wrong bracket", "FR [{},|{}},{},{}]"},
        {"does not end", "FR [{},|{},"},
        {"text after the end", "FL [{},|{}],{},{}"},
        {"byte order mark", "W \xEF\xBB\xBF[{},{}]"},
        {"zero bytes", std::string_view("W [\0{},{}]", 11)},
        {"member", "HMMT {\"n\":[|{},|{}|],\"x\":[{},{}]}", 1, {}, "n"},
        {"later member",
         "HMMT {\"a\":-1.5e3 , \"b\" : [], \"c\":[1,{},{}],\"d\":{\"x\":[{},{}]},\"e\":\"\\\"[{\","
         "\"f\":true,\n\"r\\\"\u00e9\":\n[|{\"n\":1},|\n{\"n\":2} |],\"n\":null}",
         5,
         {},
         "r\\\"\u00e9"},
        {"the first one is too small", "HMMT {\"a\":[{},{}],\"b\":[|{},{},|{}|]}", 6, {}, "b"},
        {"as large as the target", "W {\"a\":[{},{}]}", 5},
        {"one large element", "HMT {\"a\":[|{\"b\":1}|]}", 4, {}, "a"},
        {"other elements before it is large", "W {\"a\":[{},{},1,{},{}]}", 7},
        {"other elements after", "HMR {\"a\":[|{},|{},1,{}]}", 1, {}, "a"},
        {"no array", "W {\"a\":{\"b\":[{},{}]},\"c\":\"[\"}"},
        {"no name", "W {a:[{},{}]}"},
        {"no colon", "W {\"a\",[{},{}]}"},
        {"lines", "FMML {}\n|[1,\n|2\r\n|\n", 3, TextForm::LINES},
        {"one line", "W {\"a\":1}\n", 1, TextForm::LINES},
        {"line feeds only", "FMML \n|\n|\n|1", 1, TextForm::LINES},
        {"a sequence", "W {}{}\n{}", 1, TextForm::SEQUENCE},
    };
    for (const auto& c : cases) {
        const std::string_view marked = c.expected.substr(c.expected.find(' ') + 1);
        std::string text(marked);
        std::erase(text, '|');
        for (const SkimKernel kernel : kKernels) {
            for (std::size_t piece = 1; piece <= text.size() + 1; ++piece) {
                SCOPED_TRACE(std::string(c.name) + " by " + std::to_string(piece));
                const Found found = divide(text, c.form, c.target, piece, kernel);
                EXPECT_EQ(shown(found.partitions), c.expected);
                EXPECT_EQ(c.member.empty() ? "" : found.member, c.member);
                expectPlaces(found.partitions, text);
            }
        }
    }
}

// What cannot be divided is not held, and neither is what comes after the last element.
TEST(Partition, GivesOutTheRestInParts) {
    const std::string more(1000, ' ');
    const std::string far(std::size_t{17} << 20, 'x');
    const std::string tests[] = {"[1" + more,       "[{},{},1" + more,
                                 "[{},{}]" + more,  "{\"a\":[{},{}]" + more + "}",
                                 "{\"a\":\"" + far, "{\"a\":\"" + far + "\",\"b\":[{},{},{}]}"};
    for (const std::string& text : tests) {
        const std::size_t piece = text.size() > far.size() ? 1 << 20 : 10;
        const Found found = divide(text, TextForm::DOCUMENT, 3, piece, SkimKernel::BEST);
        EXPECT_LT(found.held, piece) << text.substr(0, 20);
        expectPlaces(found.partitions, text);
        if (text.size() > far.size()) {
            EXPECT_EQ(found.partitions[0].kind, Partition::Kind::WHOLE);
        }
    }
}

// ---- Random texts
// --------------------------------------------------------------------------------

class Writer {
   public:
    explicit Writer(unsigned seed) : random_(seed) {}

    std::string document() {
        switch (below(8)) {
            case 0:
                return space() + value(3) + space();
            case 1:
            case 2:
            case 3:
                return space() + array(40) + space();
            default:
                return space() + object(6, 30) + space();
        }
    }

    std::size_t below(std::size_t n) { return random_() % n; }

   private:
    std::string space() {
        static constexpr const char* kSpaces[] = {"", "", "", "", " ", "\n", "\r\n", "\t  \n "};
        return kSpaces[below(8)];
    }
    std::string string() {
        static constexpr const char* kParts[] = {"a",   "\\\"", "\\\\", "{", "}",       "[",
                                                 "},{", "]",    ",",    ":", "\\u00e9", "\u20ac"};
        std::string text = "\"";
        for (std::size_t n = below(6) * below(6); n > 0; --n) {
            text += kParts[below(12)];
        }
        return text + "\"";
    }
    // Of objects, but for a few.
    std::string array(std::size_t most) {
        const bool mixed = below(4) == 0;
        std::string text = "[" + space();
        for (std::size_t n = below(most + 1), i = 0; i < n; ++i) {
            text += (i > 0 ? "," : "") + space();
            text += (mixed && below(8) == 0 ? value(2) : object(3, 2)) + space();
        }
        return text + "]";
    }
    std::string object(std::size_t most, std::size_t elements) {
        std::string text = "{" + space();
        for (std::size_t n = below(most + 1), i = 0; i < n; ++i) {
            text += (i > 0 ? "," : "") + space() + string() + space() + ":" + space();
            text += (below(3) == 0 ? array(elements) : value(2)) + space();
        }
        return text + "}";
    }
    std::string value(std::size_t depth) {
        static constexpr const char* kScalars[] = {"1", "-2.5e+3", "true", "null"};
        const std::size_t kind = below(depth == 0 ? 5 : 8);
        return kind < 4    ? kScalars[kind]
               : kind == 4 ? string()
               : kind == 5 ? array(depth - 1)
                           : object(depth, depth - 1);
    }

    std::mt19937 random_;
};

// An array that may be divided, as one sees it who reads byte by byte.
struct Candidate {
    uint64_t begin;               // of what is after '['
    uint64_t end;                 // where ']' stands
    std::vector<uint64_t> after;  // each comma between elements
};

std::vector<Candidate> candidates(std::string_view text) {
    std::vector<Candidate> found;
    std::string open;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool divisible = open == "[" || open == "{[";
        switch (text[at]) {
            case '"':
                for (++at; at < text.size() && text[at] != '"'; ++at) {
                    at += text[at] == '\\' ? 1 : 0;
                }
                break;
            case '[':
            case '{':
                open += text[at];
                if (open == "[" || open == "{[") {
                    found.push_back({at + 1, UINT64_MAX, {}});
                }
                break;
            case ']':
            case '}':
                if (divisible) {
                    found.back().end = at;
                }
                open.resize(open.empty() ? 0 : open.size() - 1);
                break;
            case ',':
                if (divisible) {
                    found.back().after.push_back(at + 1);
                }
        }
    }
    return found;
}

bool objectAt(std::string_view text, std::size_t at) {
    at = text.find_first_not_of(" \t\r\n", at);
    return at < text.size() && text[at] == '{';
}

// The cuts of a text without mistakes.
std::vector<uint64_t> expectedCuts(std::string_view text, uint64_t target) {
    const bool ofMember = objectAt(text, 0);
    for (const Candidate& array : candidates(text)) {
        if (!objectAt(text, array.begin)) {
            continue;
        }
        std::vector<uint64_t> cuts(ofMember ? 1 : 0, array.begin);
        uint64_t last = ofMember ? array.begin : 0;
        bool objects = true;
        for (const uint64_t after : array.after) {
            objects = objects && objectAt(text, after);
            if (objects && after - last >= target) {
                cuts.push_back(last = after);
            }
        }
        if (!ofMember) {
            return cuts;
        }
        if (objects && (cuts.size() > 1 || array.end - array.begin > target)) {
            cuts.push_back(array.end);
        }
        if (cuts.size() > 1) {
            return cuts;
        }
    }
    return {};
}

// The cuts, after a first 0.
std::vector<uint64_t> beginnings(const Found& found) {
    std::vector<uint64_t> offsets;
    for (const Partition& partition : found.partitions) {
        offsets.push_back(partition.begin.offset);
    }
    return offsets;
}

// An independent parser takes each partition for what it says that it is.
void expectParsed(const std::vector<Partition>& partitions) {
    for (std::size_t i = 0; i < partitions.size(); ++i) {
        std::string text = partitions[i].text;
        const bool ended =
            i + 1 < partitions.size() && partitions[i + 1].kind == Partition::Kind::TAIL;
        switch (partitions[i].kind) {
            case Partition::Kind::HEAD:
                text += "]}";
                break;
            case Partition::Kind::FIRST:
                text += "{}]";
                break;
            case Partition::Kind::MIDDLE:
                text = "[" + text + (ended ? "]" : "{}]");
                break;
            case Partition::Kind::LAST:
                text = "[" + text;
                break;
            case Partition::Kind::TAIL:
                text = "{\"a\":[" + text;
                break;
            default:
                continue;
        }
        EXPECT_TRUE(nlohmann::json::accept(text)) << text;
    }
}

TEST(Partition, RandomTextsAreCutAsOneWhoReadsByteByByteWouldCutThem) {
    std::size_t divided = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        Writer write(seed);
        const std::string text = write.document();
        const uint64_t target = 1 + write.below(write.below(2) == 0 ? 50 : 500);
        std::vector<uint64_t> expected = expectedCuts(text, target);
        expected.insert(expected.begin(), 0);
        divided += expected.size() > 1 ? 1 : 0;
        for (const SkimKernel kernel : kKernels) {
            for (const std::size_t piece : {std::size_t{1}, 1 + write.below(200), text.size()}) {
                SCOPED_TRACE(std::to_string(seed) + " by " + std::to_string(piece));
                const Found found = divide(text, TextForm::DOCUMENT, target, piece, kernel);
                ASSERT_EQ(beginnings(found), expected) << text;
                expectPlaces(found.partitions, text);
                if (found.partitions.back().kind != Partition::Kind::REST) {
                    expectParsed(found.partitions);
                }
            }
        }
    }
    EXPECT_GT(divided, 150U);
}

TEST(Partition, RandomLinesAreCutAfterLineFeeds) {
    for (unsigned seed = 0; seed < 1000; ++seed) {
        Writer write(seed);
        std::string text;
        for (std::size_t n = write.below(30); n > 0; --n) {
            text += std::string(write.below(12), 'x') + "\n";
        }
        text.resize(text.size() - std::min(text.size(), write.below(3)));
        const uint64_t target = 1 + write.below(50);
        std::vector<uint64_t> expected = {0};
        for (std::size_t at = 1; at < text.size(); ++at) {
            if (text[at - 1] == '\n' && at - expected.back() >= target) {
                expected.push_back(at);
            }
        }
        for (const std::size_t piece : {std::size_t{1}, 1 + write.below(60), text.size() + 1}) {
            SCOPED_TRACE(std::to_string(seed) + " by " + std::to_string(piece));
            const Found found = divide(text, TextForm::LINES, target, piece, SkimKernel::BEST);
            ASSERT_EQ(beginnings(found), expected) << text;
            expectPlaces(found.partitions, text);
        }
    }
}

// Where an independent parser stops.
struct Stop : nlohmann::json_sax<nlohmann::json> {
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool start_object(std::size_t) override { return true; }
    bool key(string_t&) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t position, const std::string&,
                     const nlohmann::detail::exception&) override {
        at = position == 0 ? 0 : position - 1;
        return false;
    }
    std::size_t at = std::string::npos;
};

TEST(Partition, CutsBeforeAMistakeAreRight) {
    std::size_t before = 0;
    for (unsigned seed = 0; seed < 1500; ++seed) {
        Writer write(seed);
        std::string text = write.document();
        for (std::size_t n = 1 + write.below(3); n > 0 && !text.empty(); --n) {
            const std::size_t at = write.below(text.size());
            text.replace(at, write.below(3), 1, "{}[],:\"\\ 1\n\xEF"[write.below(12)]);
        }
        Stop stop;
        nlohmann::json::sax_parse(text, &stop);
        std::vector<uint64_t> right = {0};
        for (const Candidate& array : candidates(text.substr(0, stop.at))) {
            right.push_back(array.begin);
            right.insert(right.end(), array.after.begin(), array.after.end());
            right.push_back(array.end);
        }
        for (const SkimKernel kernel : kKernels) {
            SCOPED_TRACE(seed);
            const Found found =
                divide(text, TextForm::DOCUMENT, 1 + write.below(20), 1 + write.below(200), kernel);
            expectPlaces(found.partitions, text);
            for (const uint64_t offset : beginnings(found)) {
                if (offset <= stop.at) {
                    EXPECT_EQ(std::count(right.begin(), right.end(), offset), 1)
                        << offset << " of " << text;
                    before += offset > 0 ? 1 : 0;
                }
            }
        }
    }
    EXPECT_GT(before, 1000U);
}

}  // namespace
